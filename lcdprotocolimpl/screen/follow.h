// Whether the audio follows what happens to the picture.
#pragma once

#include "json/reflection.h"

namespace LCD::ProtocolImpl {

struct s_ScreenFollow {
    int type = -1;  ///< 1: fade to black, 2: freeze
    int enable = -1;
    AJSON(type, enable)
};

}  // namespace LCD::ProtocolImpl
