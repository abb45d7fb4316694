#include "lcdmemorycacheimpl/screen/transitionpreview.h"

namespace LCD::MemoryCacheImpl {

template class ComponentShell<MemoryCache::ITransitionPreview, TransitionPreviewGetter, TransitionPreviewSetter,
                              DirtyOnTokenAndData, RedeliverOnFailure>;

TransitionPreview::TransitionPreview() = default;
TransitionPreview::~TransitionPreview() = default;

}  // namespace LCD::MemoryCacheImpl
