#pragma once

#include <memory>
#include <string>
#include <vector>

#include "lcd/comm/ihttpchannel.h"
#include "lcdprotocolimpl/screen/take.h"

namespace LCD::ProtocolImpl {

// the selected screens
bool getScreenTbar(Comm::IHttpChannel* channel, s_Tbar& out);
bool setScreenTake(Comm::IHttpChannel* channel, std::shared_ptr<s_Take> value);
bool setScreenCut(Comm::IHttpChannel* channel, std::shared_ptr<s_Direction> value);
bool decodeScreenTake(const std::string& body, s_TakeState& out);
bool decodeScreenTbar(const std::string& body, s_Tbar& out);
bool decodeScreenCut(const std::string& body, s_Direction& out);

// named screens
bool getScreenDetailTbar(Comm::IHttpChannel* channel, std::vector<s_ScreenDetailTbar>& out);
bool setScreenDetailTbar(Comm::IHttpChannel* channel, std::shared_ptr<std::vector<s_ScreenDetailTbar>> value);
bool setScreenDetailTake(Comm::IHttpChannel* channel, std::shared_ptr<std::vector<s_ScreenDetailTake>> value);
bool setScreenDetailCut(Comm::IHttpChannel* channel, std::shared_ptr<std::vector<s_ScreenDetailDirection>> value);
bool decodeScreenDetailTake(const std::string& body, s_TakeState& out);
bool decodeScreenDetailTbar(const std::string& body, std::vector<s_ScreenDetailTbar>& out);
bool decodeScreenDetailCut(const std::string& body, std::vector<s_ScreenDetailDirection>& out);

}  // namespace LCD::ProtocolImpl
