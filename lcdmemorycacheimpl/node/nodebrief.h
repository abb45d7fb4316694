#pragma once

#include "lcdmemorycacheimpl/engine/componentshell.h"
#include "lcdmemorycacheimpl/node/nodebriefgetter.h"

namespace LCD::MemoryCacheImpl {

extern template class ComponentShell<MemoryCache::INodeBrief, NodeBriefGetter>;

class NodeBrief final : public ComponentShell<MemoryCache::INodeBrief, NodeBriefGetter> {
public:
    NodeBrief();
    ~NodeBrief() override;
};

}  // namespace LCD::MemoryCacheImpl
