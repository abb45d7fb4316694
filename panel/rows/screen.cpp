#include "lcd/memorycache/iswitcheffect.h"
#include "lcd/memorycache/iswitchmode.h"
#include "lcd/memorycache/itransitionpreview.h"
#include "lcdprotocolimpl/screen/switchsettings.h"
#include "panel/kind.h"

namespace panel {

using namespace LCD::MemoryCache;
using namespace LCD::ProtocolImpl;

std::vector<Component> screenRows() {
    using Effect = ISwitchEffect::RequestCBType;
    using Mode = ISwitchMode::RequestCBType;
    using Preview = ITransitionPreview::RequestCBType;
    return {
        component<ISwitchEffect>(
            "SwitchEffect", "lcdMemoryCacheSwitchEffect",
            {settable<s_SetSwitchEffect>(
                 delivers<s_GetSwitchEffect>("SwitchEffectChanged", Effect::SwitchEffectChanged)),
             settable<s_SetActiveEffect>(delivers<int>("ActiveEffectChanged", Effect::ActiveEffectChanged))}),
        component<ISwitchMode>(
            "SwitchMode", "lcdMemoryCacheSwitchMode",
            {settable<s_SwitchMode>(delivers<s_SwitchMode>("SwitchModeChanged", Mode::SwitchModeChanged))}),
        component<ITransitionPreview>("TransitionPreview", "lcdMemoryCacheTransitionPreview",
                                      {settable<s_TransitionPreview>(delivers<s_TransitionPreview>(
                                          "TransitionEnableChanged", Preview::TransitionEnableChanged))}),
    };
}

}  // namespace panel
