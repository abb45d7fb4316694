#pragma once

#include <string>

#include "lcd/comm/ihttpchannel.h"
#include "lcdprotocolimpl/system/auth.h"

namespace LCD::ProtocolImpl {

/// The panel's built-in account. The password stands here in the form in which it is sent.
inline constexpr const char* DEFUALT_USERNAME = "admin";
inline constexpr const char* DEFAULT_PWD = "Zk9wUTc4";

/// The session token, or empty when the login failed.
std::string login(Comm::IHttpChannel* channel, const std::string& username, const std::string& password);

}  // namespace LCD::ProtocolImpl
