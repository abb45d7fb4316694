// Detailed timings.
#pragma once

#include "json/reflection.h"

namespace LCD::ProtocolImpl {

struct s_Timing {
    int addTime = -1;
    int frontPorch = -1;
    int sync = -1;
    int syncPolarity = -1;
    int totalTime = -1;
    AJSON(addTime, frontPorch, sync, syncPolarity, totalTime)
};

struct s_TimingDetail {
    int interlaced = -1;
    float refresh = 0;
    s_Timing horizontal;
    s_Timing vertical;
    AJSON(interlaced, refresh, horizontal, vertical)
};

}  // namespace LCD::ProtocolImpl
