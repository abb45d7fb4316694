// Questions to the device before a change, and its verdicts.
#pragma once

#include <string>
#include <vector>

#include "json/reflection.h"
#include "lcdprotocolimpl/interface/interface.h"
#include "lcdprotocolimpl/interface/timing.h"

namespace LCD::ProtocolImpl {

struct s_ThumbTimingCheck {
    int interfaceId = -1;
    std::string tagName;
    s_ThumbTiming thumbTiming;
    int colorSpace = -1;
    int colorDepth = -1;
    AJSON(interfaceId, tagName, thumbTiming, colorSpace, colorDepth)
};

struct s_DetailTimingCheck {
    int interfaceId = -1;
    std::string tagName;
    s_TimingDetail timing;
    int colorSpace = -1;
    int colorDepth = -1;
    AJSON(interfaceId, tagName, timing, colorSpace, colorDepth)
};

struct s_TimingCheckResult {
    int interfaceId = -1;
    std::string tagName;
    int tagValueMax = -1;
    int tagValueMin = -1;
    int maxBandwidth = -1;
    int currentBandwidth = -1;
    std::vector<int> tagValueEnum;
    float frame = 0;
    AJSON(interfaceId, tagName, tagValueMax, tagValueMin, maxBandwidth, currentBandwidth, tagValueEnum, frame)
};

struct s_LayerAssessResult {
    int layerId = -1;
    int state = -1;
    AJSON(layerId, state)
};

struct s_PresetPlayAssess {
    int presetId = -1;
    int sceneType = -1;
    AJSON(presetId, sceneType)
};

struct s_PresetPlayAssessResult {
    int state = -1;
    AJSON(state)
};

struct s_LayerRatio {
    int layerId = -1;
    int aspectRatio = -1;
    int locked = -1;
    AJSON(layerId, aspectRatio, locked)
};

}  // namespace LCD::ProtocolImpl
