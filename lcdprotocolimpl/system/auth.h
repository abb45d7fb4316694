// The session with the device.
#pragma once

#include <string>

#include "json/reflection.h"

namespace LCD::ProtocolImpl {

struct STLogin {
    std::string username;
    std::string password;
    AJSON(username, password)
};

struct STAuth {
    std::string token;
    AJSON(token)
};

}  // namespace LCD::ProtocolImpl
