#pragma once

#include "lcd/comm/ihttpchannel.h"
#include "lcdprotocolimpl/system/aboutus.h"

namespace LCD::ProtocolImpl {

bool getAboutUs(Comm::IHttpChannel* channel, s_AboutUs& out);

}  // namespace LCD::ProtocolImpl
