#pragma once

#include <string>
#include <vector>

#include "lcd/memorycache/inodebrief.h"
#include "lcdmemorycacheimpl/engine/objectcacheimpl.h"
#include "lcdprotocolimpl/node/node.h"

namespace LCD::MemoryCacheImpl {

class NodeBriefGetter
    : public ObjectCacheImpl<std::vector<ProtocolImpl::s_NodeBrief>, int, MemoryCache::INodeBrief::RequestCBType> {
public:
    // reload thread
    void reloadCache(const RequestData& request) override;
    void notifyNodeListChanged(const RequestData& request);

    std::string objectTypeName() const override { return "node list"; }
    void registerNotifySubCacheCallback() override;

private:
    ProtocolImpl::s_NodeStatusStatistics statistics LCD_GUARDED_BY(cacheMutex);
};

}  // namespace LCD::MemoryCacheImpl
