#pragma once

#include <list>
#include <string>
#include <vector>

#include "lcd/comm/ihttpchannel.h"
#include "lcdprotocolimpl/interface/interface.h"

namespace LCD::ProtocolImpl {

/// An empty list counts as a failure.
bool getInterfaceBriefList(Comm::IHttpChannel* channel, std::list<s_InterfaceBrief>& out);
bool decodeGeneral(const std::string& body, std::vector<s_InterfaceGeneral>& out);

}  // namespace LCD::ProtocolImpl
