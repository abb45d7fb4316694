// Device-wide switches.
#pragma once

#include "json/reflection.h"

namespace LCD::ProtocolImpl {

struct s_SystemDetail {
    int ftbAudioFollow = -1;
    int freezeAudioFollow = -1;
    AJSON(ftbAudioFollow, freezeAudioFollow)
};

}  // namespace LCD::ProtocolImpl
