// Presets: stored arrangements of the screens.
#pragma once

#include <list>
#include <string>
#include <vector>

#include "json/reflection.h"
#include "lcdprotocolimpl/screen/screen.h"

namespace LCD::ProtocolImpl {

struct s_PresetIdObj {
    int id = -1;
    int sceneType = -1;
    int playType = -1;
    AJSON(id, sceneType, playType)
};

struct s_General {
    std::string name;
    AJSON(name)
};

struct s_OutputDisplayBase {
    int sourceType = -1;
    int sourceId = -1;
    int interfaceId = -1;
    AJSON(sourceType, sourceId, interfaceId)
};

struct s_PresetDetail {
    int presetId = -1;
    s_PresetIdObj presetIdObj;
    s_General general;
    std::vector<s_OutputDisplayBase> displays;
    AJSON(presetId, presetIdObj, general, displays)
};

struct s_PresetDetailPage {
    int count = -1;
    int page = -1;
    int totalCount = -1;
    int totalPage = -1;
    std::list<s_PresetDetail> list;
    int currentPresetId = -1;
    AJSON(count, page, totalCount, totalPage, list, currentPresetId)
};

struct s_PresetApply {
    int presetId = -1;
    int sceneType = -1;
    AJSON(presetId, sceneType)
};

struct s_PresetApplyResult {
    std::vector<s_ScreenIdObj> screenObjFailed;
    std::vector<s_ScreenIdObj> screenObjResourceNotEnough;
    AJSON(screenObjFailed, screenObjResourceNotEnough)
};

struct s_PresetCreate {
    std::string namePrefix;
    s_PresetIdObj presetIdObj;
    AJSON(namePrefix, presetIdObj)
};

/// A rename.
struct s_PresetGeneral {
    int presetId = -1;
    s_General general;
    std::string presetName;
    AJSON(presetId, general, presetName)
};

struct s_PresetId {
    int presetId = -1;
    AJSON(presetId)
};

}  // namespace LCD::ProtocolImpl
