#include "lcdprotocolimpl/screen/switchsettingsrequests.h"

#include "lcdprotocolimpl/core/report.h"
#include "lcdprotocolimpl/core/request.h"

namespace LCD::ProtocolImpl {

bool getScreenSwitchEffect(Comm::IHttpChannel* channel, s_GetSwitchEffect& out) {
    return Request(channel, "/zelto/v1/screen/global/switch-effect").get(out);
}

bool setScreenSwitchEffect(Comm::IHttpChannel* channel, std::shared_ptr<s_SetSwitchEffect> value) {
    return Request(channel, "/zelto/v1/screen/global/switch-effect").put(*value);
}

bool setActiveEffectType(Comm::IHttpChannel* channel, std::shared_ptr<s_SetActiveEffect> value) {
    return Request(channel, "/zelto/v1/screen/global/active-effect").post(*value);
}

bool decodeScreenSwitchEffect(const std::string& body, s_SetSwitchEffectParaBody& out) {
    return decodeReport(body, out, "screen switch effect");
}

bool decodeActiveEffectType(const std::string& body, s_SetActiveEffect& out) {
    return decodeReport(body, out, "screen active type");
}

bool getScreenSwitchMode(Comm::IHttpChannel* channel, s_SwitchMode& out) {
    return Request(channel, "/zelto/v1/screen/global/swap").get(out);
}

bool setScreenSwitchMode(Comm::IHttpChannel* channel, std::shared_ptr<s_SwitchMode> value) {
    return Request(channel, "/zelto/v1/screen/global/swap").put(*value);
}

bool decodeScreenSwitchMode(const std::string& body, s_SwitchMode& out) {
    return decodeReport(body, out, "screen switch mode");
}

bool getTransitionPreview(Comm::IHttpChannel* channel, s_TransitionPreview& out) {
    return Request(channel, "/zelto/v1/screen/global/transition-preview").get(out);
}

bool setTransitionPreview(Comm::IHttpChannel* channel, std::shared_ptr<s_TransitionPreview> value) {
    return Request(channel, "/zelto/v1/screen/global/transition-preview").post(*value);
}

bool decodeTransitionPreview(const std::string& body, s_TransitionPreview& out) {
    return decodeReport(body, out, "screen transition preview");
}

}  // namespace LCD::ProtocolImpl
