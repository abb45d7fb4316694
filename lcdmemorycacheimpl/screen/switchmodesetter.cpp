#include "lcdmemorycacheimpl/screen/switchmodesetter.h"

#include "lcdprotocolimpl/screen/switchsettingsrequests.h"

namespace LCD::MemoryCacheImpl {

using CB = MemoryCache::ISwitchMode::RequestCBType;

void SwitchModeSetter::registerSetSubDataCallback() {
    bindHandler(CB::SwitchModeChanged, &SwitchModeSetter::setSwitchMode);
}

bool SwitchModeSetter::setSwitchMode(const RequestData& request) {
    return sendRecord(request, "s_SwitchMode", &ProtocolImpl::setScreenSwitchMode);
}

}  // namespace LCD::MemoryCacheImpl
