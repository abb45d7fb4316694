#pragma once

#include "lcd/comm/ihttpchannel.h"
#include "lcdprotocolimpl/system/systemdetail.h"

namespace LCD::ProtocolImpl {

bool getSystemDetail(Comm::IHttpChannel* channel, s_SystemDetail& out);

}  // namespace LCD::ProtocolImpl
