#include <algorithm>
#include <nlohmann/json.hpp>

#include "lcd/memorycache/iscreenbrief.h"
#include "lcd/memorycache/iscreendetailtake.h"
#include "lcd/memorycache/iscreentake.h"
#include "lcd/memorycache/iswitcheffect.h"
#include "lcd/memorycache/iswitchmode.h"
#include "lcd/memorycache/itransitionpreview.h"
#include "lcdprotocolimpl/screen/switchsettings.h"
#include "lcdprotocolimpl/screen/take.h"
#include "panel/kind.h"

namespace panel {

using namespace LCD::MemoryCache;
using namespace LCD::ProtocolImpl;
using nlohmann::json;

namespace {

// The screen that the delivery is about. A work mode may have no screen of the active one's number: then there is none.
json activeScreen(const json& state, const json& mirror) {
    if (mirror.at("screenId") == -1) {
        return mirror;
    }
    const json& screens = state.at("screen").at("list");
    const auto found = std::find_if(screens.begin(), screens.end(),
                                    [&](const json& screen) { return screen.at("screenId") == mirror.at("screenId"); });
    return found == screens.end() ? json() : *found;
}

json tbars(const json& state, const json&) {
    json all = json::array();
    for (const json& screen : state.at("screen").at("list")) {
        all.push_back({{"screenId", screen.at("screenId")}, {"percent", screen.at("percent")}});
    }
    return all;
}

Component screenBrief() {
    using Brief = IScreenBrief::RequestCBType;
    return component<IScreenBrief>(
        "ScreenBrief", "lcdMemoryCacheScreenBrief",
        {delivers<int>("ActiveScreenTypeChanged", Brief::ActiveScreenTypeChanged),
         delivers<int>("RegularScreenSelected", Brief::RegularScreenSelected),
         delivers<int>("ActiveScreenSelected", Brief::ActiveScreenSelected),
         delivers<std::pair<int, int>>("ActiveScreenPgmStatusChanged", Brief::ActiveScreenPgmStatusChanged,
                                       "the active screen and its programme-edit status", &pairText),
         mirrors(delivers<s_ScreenBrief>("ActiveScreenInfoChanged", Brief::ActiveScreenInfoChanged),
                 {.device = activeScreen, .stale = {{"/general", "no report tells of it"}}})},
        {0x50104});
}

Component switchEffect() {
    using Effect = ISwitchEffect::RequestCBType;
    return component<ISwitchEffect>(
        "SwitchEffect", "lcdMemoryCacheSwitchEffect",
        {settable<s_SetSwitchEffect>(
             mirrors(delivers<s_GetSwitchEffect>("SwitchEffectChanged", Effect::SwitchEffectChanged),
                     "/screen/global/switch-effect",
                     {{"/switchEffect/time", "a report of the effects leaves the top as it is"},
                      {"/switchEffect/type", "a report of the effects leaves the top as it is"}})),
         settable<s_SetActiveEffect>(delivers<int>("ActiveEffectChanged", Effect::ActiveEffectChanged))},
        {0x71205, 0x71209});
}

Component screenTake() {
    using Take = IScreenTake::RequestCBType;
    return component<IScreenTake>(
        "ScreenTake", "lcdMemoryCacheScreenTake",
        {settable<s_Take>(told(delivers<s_TakeState>("ScreenTakeSet", Take::ScreenTakeSet, "when a take is reported"))),
         settable<s_Direction>(neverDelivered("ScreenCutSet", Take::ScreenCutSet, "a cut is not told of")),
         mirrors(delivers<s_Tbar>("ScreenTbarChanged", Take::ScreenTbarChanged), "/screen/selected/tbar",
                 {{"/percent", "reports of a T-bar's move change nothing in the mirror"},
                  {"/effectSelect", "of what is fetched the mirror keeps the percentage alone", false},
                  {"/switchEffect", "as before", false}})},
        {0x71203, 0x71204, 0x71202, 0x50104});
}

Component screenDetailTake() {
    using Take = IScreenDetailTake::RequestCBType;
    return component<IScreenDetailTake>(
        "ScreenDetailTake", "lcdMemoryCacheScreenDetailTake",
        {settable<std::vector<s_ScreenDetailTake>>(
             told(delivers<s_TakeState>("ScreenDetailTakeSet", Take::ScreenDetailTakeSet, "when a take is reported"))),
         settable<std::vector<s_ScreenDetailDirection>>(told(delivers<std::vector<s_ScreenDetailDirection>>(
             "ScreenDetailCutSet", Take::ScreenDetailCutSet, "when a cut is reported"))),
         settable<std::vector<s_ScreenDetailTbar>>(
             mirrors(delivers<std::vector<s_ScreenDetailTbar>>("ScreenDetailTbarSet", Take::ScreenDetailTbarSet),
                     {.device = tbars,
                      .identity = "screenId",
                      .stale = {{"/*/percent", "reports tell of the end of a T-bar's move alone"}}}))},
        {0x71302, 0x71304, 0x71303, 0x50104});
}

}  // namespace

std::vector<Component> screenRows() {
    using Mode = ISwitchMode::RequestCBType;
    using Preview = ITransitionPreview::RequestCBType;
    return {
        screenBrief(),
        switchEffect(),
        component<ISwitchMode>(
            "SwitchMode", "lcdMemoryCacheSwitchMode",
            {settable<s_SwitchMode>(
                mirrors(delivers<s_SwitchMode>("SwitchModeChanged", Mode::SwitchModeChanged), "/screen/global/swap"))},
            {0x71201}),
        component<ITransitionPreview>(
            "TransitionPreview", "lcdMemoryCacheTransitionPreview",
            {settable<s_TransitionPreview>(
                mirrors(delivers<s_TransitionPreview>("TransitionEnableChanged", Preview::TransitionEnableChanged),
                        "/screen/global/transition-preview"))},
            {0x71207}),
        screenTake(),
        screenDetailTake(),
    };
}

}  // namespace panel
