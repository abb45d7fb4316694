#include "lcdmemorycacheimpl/screen/switchmodegetter.h"

#include "lcdprotocolimpl/screen/switchsettingsrequests.h"

namespace LCD::MemoryCacheImpl {

using CB = MemoryCache::ISwitchMode::RequestCBType;
using ProtocolImpl::s_SwitchMode;

void SwitchModeGetter::registerReportDecodeCallback() { bindReport(0x71201, &SwitchModeGetter::decodeSwitchMode); }

void SwitchModeGetter::registerNotifySubCacheCallback() {
    bindHandler(CB::SwitchModeChanged, &SwitchModeGetter::notifySwitchModeChanged);
}

void SwitchModeGetter::reloadCache(const RequestData& /*request*/) { fetchCache(&ProtocolImpl::getScreenSwitchMode); }

bool SwitchModeGetter::decodeSwitchMode(const std::string& body) {
    return mergeReport(body, &ProtocolImpl::decodeScreenSwitchMode, copyMember(&s_SwitchMode::enable),
                       CB::SwitchModeChanged, AfterReport::dirtyUnlessDecoded);
}

void SwitchModeGetter::notifySwitchModeChanged(const RequestData& request) { deliverCache(request); }

}  // namespace LCD::MemoryCacheImpl
