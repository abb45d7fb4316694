#include "lcdmemorycacheimpl/layer/layerbrief.h"

namespace LCD::MemoryCacheImpl {

template class ComponentShell<MemoryCache::ILayerBrief, LayerBriefGetter, NoSetter, DirtyOnLayers>;

LayerBrief::LayerBrief() = default;
LayerBrief::~LayerBrief() = default;

}  // namespace LCD::MemoryCacheImpl
