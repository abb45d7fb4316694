#pragma once

#include <string>

#include "lcd/memorycache/iswitchmode.h"
#include "lcdmemorycacheimpl/engine/objectcacheimpl.h"
#include "lcdprotocolimpl/screen/switchsettings.h"

namespace LCD::MemoryCacheImpl {

class SwitchModeGetter
    : public ObjectCacheImpl<ProtocolImpl::s_SwitchMode, int, MemoryCache::ISwitchMode::RequestCBType> {
public:
    // reload thread
    void reloadCache(const RequestData& request) override;
    void notifySwitchModeChanged(const RequestData& request);

    // receiver thread
    bool decodeSwitchMode(const std::string& body);

    std::string objectTypeName() const override { return "switch mode"; }
    void registerNotifySubCacheCallback() override;
    void registerReportDecodeCallback() override;
};

}  // namespace LCD::MemoryCacheImpl
