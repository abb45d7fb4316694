#include "lcdmemorycacheimpl/node/node.h"

namespace LCD::MemoryCacheImpl {

template class ComponentShell<MemoryCache::INode, NodeGetter, NodeSetter, DirtyOnTokenAndData, RedeliverOnFailure>;

Node::Node() = default;
Node::~Node() = default;

}  // namespace LCD::MemoryCacheImpl
