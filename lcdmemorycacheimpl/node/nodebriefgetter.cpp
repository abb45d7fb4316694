#include "lcdmemorycacheimpl/node/nodebriefgetter.h"

#include "lcdprotocolimpl/node/noderequests.h"

namespace LCD::MemoryCacheImpl {

using CB = MemoryCache::INodeBrief::RequestCBType;

void NodeBriefGetter::registerNotifySubCacheCallback() {
    bindHandler(CB::NodeListChanged, &NodeBriefGetter::notifyNodeListChanged);
}

void NodeBriefGetter::reloadCache(const RequestData& /*request*/) {
    LockGuard lock(cacheMutex);
    if (ProtocolImpl::getNodeBriefList(httpChannel, {}, cache, statistics)) {
        cacheDirty = false;
    } else {
        KT_WARN("get node list fail");
    }
}

void NodeBriefGetter::notifyNodeListChanged(const RequestData& request) { deliverCache(request); }

}  // namespace LCD::MemoryCacheImpl
