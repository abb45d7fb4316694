// How the switcher takes: the transition effects, the swap after a take, the preview of a transition.
#pragma once

#include "json/reflection.h"

namespace LCD::ProtocolImpl {

// What a device tells of its effects: each with its own time and type.

struct s_GetWipe {
    int time = 100;
    int type = 1;
    int image = -1;
    int symmetry = -1;
    int posX = -1;
    int posY = -1;
    int frameW = -1;
    int frameS = -1;
    int direction = -1;
    int source = -1;
    AJSON(time, type, image, symmetry, posX, posY, frameW, frameS, direction, source)
};

struct s_GetGeneralEffectPara {
    int time = 100;
    int type = 1;
    int source = -1;
    AJSON(time, type, source)
};

struct s_GetDve {
    int type = 1;
    int devType = -1;
    int directionDev = -1;
    int brightness = -1;
    int softness = -1;
    int keySourceReverse = -1;
    int cutout = -1;
    int directionEffect = -1;
    int keySource = -1;
    int time = 100;
    int source = -1;
    AJSON(type, devType, directionDev, brightness, softness, keySourceReverse, cutout, directionEffect, keySource, time,
          source)
};

struct s_GetSwitchEffectParaBody {
    int time = 500;  ///< of the active effect, in milliseconds
    int type = -1;   ///< the active effect: 1 fade, 2 dip, 3 wipe, 5 DVE
    s_GetWipe wipe;
    s_GetGeneralEffectPara fadeInOut;
    s_GetGeneralEffectPara dip;
    s_GetDve dve;
    AJSON(time, type, wipe, fadeInOut, dip, dve)
};

struct s_GetSwitchEffect {
    s_GetSwitchEffectParaBody switchEffect;
    AJSON(switchEffect)
};

// What is written to a device and what it reports: one time and one type for all effects.

struct s_SetWipe {
    int image = -1;
    int symmetry = -1;
    int posX = -1;
    int posY = -1;
    int frameW = -1;
    int frameS = -1;
    int direction = -1;
    int source = -1;
    AJSON(image, symmetry, posX, posY, frameW, frameS, direction, source)
};

struct s_SetGeneralEffectPara {
    int source = -1;
    AJSON(source)
};

struct s_SetDve {
    int devType = -1;
    int brightness = -1;
    int softness = -1;
    int directionDev = -1;
    int directionEffect = -1;
    int keySource = -1;
    int keySourceReverse = -1;
    int source = -1;
    int cutout = -1;
    AJSON(devType, brightness, softness, directionDev, directionEffect, keySource, keySourceReverse, source, cutout)
};

struct s_SetSwitchEffectParaBody {
    int time = 500;
    int type = -1;
    s_SetWipe wipe;
    s_SetGeneralEffectPara fadeInOut;
    s_SetGeneralEffectPara dip;
    s_SetDve dve;
    AJSON(time, type, wipe, fadeInOut, dip, dve)
};

struct s_SetSwitchEffect {
    s_SetSwitchEffectParaBody switchEffect;
    AJSON(switchEffect)
};

/// The active effect alone.
struct s_SetActiveEffect {
    int type = -1;
    AJSON(type)
};

/// Whether programme and preview swap after a take.
struct s_SwitchMode {
    int enable = 0;
    AJSON(enable)
};

/// Whether a transition is shown in preview first.
struct s_TransitionPreview {
    int enable = 0;
    AJSON(enable)
};

}  // namespace LCD::ProtocolImpl
