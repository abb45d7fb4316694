#pragma once

#include <string>

#include "lcd/memorycache/isystemdetail.h"
#include "lcdmemorycacheimpl/engine/objectcacheimpl.h"
#include "lcdprotocolimpl/system/systemdetail.h"

namespace LCD::MemoryCacheImpl {

class SystemDetailGetter
    : public ObjectCacheImpl<ProtocolImpl::s_SystemDetail, int, MemoryCache::ISystemDetail::RequestCBType> {
public:
    // sampling thread
    void notifyCacheChangedOuter(const std::string& name, MemoryCache::ISystemDetail::RequestCBType type, int key) {
        notifyCacheChanged(name, type, key, std::any());
    }

    // reload thread
    void reloadCache(const RequestData& request) override;
    void notifySystemDetailChanged(const RequestData& request);

    // receiver thread
    bool decodeFollowed(const std::string& body, const CommChannel::AutoReportSource& source);

    std::string objectTypeName() const override { return "system detail"; }
    void registerNotifySubCacheCallback() override;
    void registerReportDecodeCallback() override;
};

}  // namespace LCD::MemoryCacheImpl
