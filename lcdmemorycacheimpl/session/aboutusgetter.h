#pragma once

#include <string>

#include "lcd/memorycache/iaboutus.h"
#include "lcdmemorycacheimpl/engine/objectcacheimpl.h"
#include "lcdprotocolimpl/system/aboutus.h"

namespace LCD::MemoryCacheImpl {

class AboutUsGetter : public ObjectCacheImpl<ProtocolImpl::s_AboutUs, int, MemoryCache::IAboutUs::RequestCBType> {
public:
    // any thread
    void setLanguageChanged(const std::string& newLanguage);

    // reload thread
    void reloadCache(const RequestData& request) override;
    void notifyAboutUsChanged(const RequestData& request);
    void notifyLanguageChanged(const RequestData& request);
    void notifyCustomModeChanged(const RequestData& request);

    // receiver thread
    bool decodeAboutUs(const std::string& body);

    std::string objectTypeName() const override { return "about us"; }
    void registerNotifySubCacheCallback() override;
    void registerReportDecodeCallback() override;

private:
    std::string language LCD_GUARDED_BY(cacheMutex);
};

}  // namespace LCD::MemoryCacheImpl
