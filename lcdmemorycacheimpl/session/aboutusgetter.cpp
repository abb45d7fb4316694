#include "lcdmemorycacheimpl/session/aboutusgetter.h"

#include "lcdprotocolimpl/system/aboutusrequests.h"

namespace LCD::MemoryCacheImpl {

using CB = MemoryCache::IAboutUs::RequestCBType;
using ProtocolImpl::s_AboutUs;

void AboutUsGetter::registerReportDecodeCallback() { bindReport(0xe0100, &AboutUsGetter::decodeAboutUs); }

void AboutUsGetter::registerNotifySubCacheCallback() {
    bindHandler(CB::AboutUsChanged, &AboutUsGetter::notifyAboutUsChanged);
    bindHandler(CB::LanguageChanged, &AboutUsGetter::notifyLanguageChanged);
    bindHandler(CB::CustomModeChanged, &AboutUsGetter::notifyCustomModeChanged);
}

void AboutUsGetter::reloadCache(const RequestData& /*request*/) {
    fetchCache(&ProtocolImpl::getAboutUs, "get about us data fail");
}

bool AboutUsGetter::decodeAboutUs(const std::string& /*body*/) {
    return refetchCache(&ProtocolImpl::getAboutUs, CB::AboutUsChanged, "get about us data fail");
}

void AboutUsGetter::setLanguageChanged(const std::string& newLanguage) {
    LockGuard lock(cacheMutex);
    if (newLanguage != language) {
        language = newLanguage;
        notifyCacheChanged({}, CB::LanguageChanged);
    }
}

void AboutUsGetter::notifyAboutUsChanged(const RequestData& request) { deliverCache(request); }

void AboutUsGetter::notifyLanguageChanged(const RequestData& request) {
    deliverField(&AboutUsGetter::language, request);
}

void AboutUsGetter::notifyCustomModeChanged(const RequestData& request) { deliverPart(&s_AboutUs::mode, request); }

}  // namespace LCD::MemoryCacheImpl
