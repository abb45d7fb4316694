#include "lcdmemorycacheimpl/screen/switcheffectsetter.h"

#include "lcdprotocolimpl/screen/switchsettingsrequests.h"

namespace LCD::MemoryCacheImpl {

using CB = MemoryCache::ISwitchEffect::RequestCBType;

void SwitchEffectSetter::registerSetSubDataCallback() {
    bindHandler(CB::SwitchEffectChanged, &SwitchEffectSetter::setSwitchEffect);
    bindHandler(CB::ActiveEffectChanged, &SwitchEffectSetter::setActiveEffectType);
}

bool SwitchEffectSetter::setSwitchEffect(const RequestData& request) {
    return sendRecord(request, "s_SetSwitchEffect", &ProtocolImpl::setScreenSwitchEffect);
}

bool SwitchEffectSetter::setActiveEffectType(const RequestData& request) {
    return sendRecord(request, "s_SetActiveEffect", &ProtocolImpl::setActiveEffectType);
}

}  // namespace LCD::MemoryCacheImpl
