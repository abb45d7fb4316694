#pragma once

#include <string>

#include "lcd/memorycache/iswitcheffect.h"
#include "lcdmemorycacheimpl/engine/objectcacheimpl.h"
#include "lcdprotocolimpl/screen/switchsettings.h"

namespace LCD::MemoryCacheImpl {

class SwitchEffectGetter
    : public ObjectCacheImpl<ProtocolImpl::s_GetSwitchEffect, int, MemoryCache::ISwitchEffect::RequestCBType> {
public:
    // reload thread
    void reloadCache(const RequestData& request) override;
    void notifySwitchEffectChanged(const RequestData& request);
    void notifyActiveEffectChanged(const RequestData& request);

    // receiver thread
    bool decodeSwitchEffect(const std::string& body);
    bool decodeActiveEffect(const std::string& body);

    std::string objectTypeName() const override { return "switch effect"; }
    void registerNotifySubCacheCallback() override;
    void registerReportDecodeCallback() override;
};

}  // namespace LCD::MemoryCacheImpl
