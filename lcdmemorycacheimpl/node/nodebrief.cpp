#include "lcdmemorycacheimpl/node/nodebrief.h"

namespace LCD::MemoryCacheImpl {

template class ComponentShell<MemoryCache::INodeBrief, NodeBriefGetter>;

NodeBrief::NodeBrief() = default;
NodeBrief::~NodeBrief() = default;

}  // namespace LCD::MemoryCacheImpl
