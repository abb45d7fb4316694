// Take, cut and T-bar.
#pragma once

#include <string>

#include "json/reflection.h"

namespace LCD::ProtocolImpl {

struct s_SwitchEffectBody {
    int time = 500;
    int type = 1;
    AJSON(time, type)
};

/// A take of the selected screens.
struct s_Take {
    int direction = -1;
    int effectSelect = -1;
    s_SwitchEffectBody switchEffect;
    AJSON(direction, effectSelect, switchEffect)
};

/// The T-bar of the selected screens.
struct s_Tbar {
    int percent = 0;
    int effectSelect = 0;
    s_SwitchEffectBody switchEffect;
    AJSON(percent, effectSelect, switchEffect)
};

/// A cut of the selected screens.
struct s_Direction {
    int direction = -1;
    AJSON(direction)
};

/// What is reported of a take.
struct s_TakeState {
    int status = -1;
    int swap = -1;
    AJSON(status, swap)
};

/// The T-bar of one screen. Two keys go on the wire; one that misses the percentage is at the end of its move.
struct s_ScreenDetailTbar : s_Tbar {
    int screenId = -1;
    s_ScreenDetailTbar() { percent = -1; }
    AJSON(screenId, percent)
};

/// A cut of one screen.
struct s_ScreenDetailDirection {
    int screenId = -1;
    int direction = -1;
    std::string screenName;
    AJSON(screenId, direction, screenName)
};

/// A take of one screen.
struct s_ScreenDetailTake {
    int screenId = -1;
    int direction = -1;
    int effectSelect = -1;
    s_SwitchEffectBody switchEffect;
    std::string screenName;
    AJSON(screenId, direction, effectSelect, switchEffect, screenName)
};

}  // namespace LCD::ProtocolImpl
