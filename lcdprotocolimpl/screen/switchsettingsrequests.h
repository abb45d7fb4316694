#pragma once

#include <memory>
#include <string>

#include "lcd/comm/ihttpchannel.h"
#include "lcdprotocolimpl/screen/switchsettings.h"

namespace LCD::ProtocolImpl {

bool getScreenSwitchEffect(Comm::IHttpChannel* channel, s_GetSwitchEffect& out);
bool setScreenSwitchEffect(Comm::IHttpChannel* channel, std::shared_ptr<s_SetSwitchEffect> value);
bool setActiveEffectType(Comm::IHttpChannel* channel, std::shared_ptr<s_SetActiveEffect> value);
bool decodeScreenSwitchEffect(const std::string& body, s_SetSwitchEffectParaBody& out);
bool decodeActiveEffectType(const std::string& body, s_SetActiveEffect& out);

bool getScreenSwitchMode(Comm::IHttpChannel* channel, s_SwitchMode& out);
bool setScreenSwitchMode(Comm::IHttpChannel* channel, std::shared_ptr<s_SwitchMode> value);
bool decodeScreenSwitchMode(const std::string& body, s_SwitchMode& out);

bool getTransitionPreview(Comm::IHttpChannel* channel, s_TransitionPreview& out);
bool setTransitionPreview(Comm::IHttpChannel* channel, std::shared_ptr<s_TransitionPreview> value);
bool decodeTransitionPreview(const std::string& body, s_TransitionPreview& out);

}  // namespace LCD::ProtocolImpl
