#pragma once

#include <list>

#include "lcd/comm/ihttpchannel.h"
#include "lcdprotocolimpl/screen/screen.h"

namespace LCD::ProtocolImpl {

bool getScreenList(Comm::IHttpChannel* channel, std::list<s_ScreenBrief>& out);

}  // namespace LCD::ProtocolImpl
