#pragma once

#include <string>

#include "lcdprotocolimpl/screen/follow.h"

namespace LCD::ProtocolImpl {

bool decodeScreenFTBFRZFollow(const std::string& body, s_ScreenFollow& out);

}  // namespace LCD::ProtocolImpl
