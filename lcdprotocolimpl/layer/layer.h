// Layers: who they are, what a list shows of them, what reports say of them.
#pragma once

#include <string>
#include <vector>

#include "json/reflection.h"

namespace LCD::ProtocolImpl {

/// Which layer it is, whatever number it bears now.
struct s_LayerIdObj {
    int id = 0;
    int type = -1;  ///< one bit for each kind of layer
    int sceneType = 0;
    int attachScreenId = 0;
    int attachScreenType = 0;
    AJSON(id, type, sceneType, attachScreenId, attachScreenType)

    friend bool operator==(const s_LayerIdObj& a, const s_LayerIdObj& b) {
        return a.id == b.id && a.type == b.type && a.sceneType == b.sceneType && a.attachScreenId == b.attachScreenId &&
               a.attachScreenType == b.attachScreenType;
    }
};

struct s_SourceDetail {
    int sourceId = 0;
    int sourceType = 0;
    int connectorType = 0;
    std::string sourceName;
    int connectCapacityNum = 0;
    AJSON(sourceId, sourceType, connectorType, sourceName, connectCapacityNum)
};

/// What a layer shows.
struct s_LayerSourceBody {
    s_SourceDetail general;
    AJSON(general)
};

struct s_LayerGeneral {
    std::string name = "N/A";
    AJSON(name)
};

struct s_LayerBrief {
    int layerId = -1;  ///< the number it bears now
    s_LayerIdObj layerIdObj;
    s_LayerGeneral general;
    s_LayerSourceBody source;
    int enable = 0;  ///< 0: closed or deleted
    int transitionFollow = 0;
    AJSON(layerId, layerIdObj, general, source, enable, transitionFollow)
};

struct s_LayerBriefPage {
    int count = -1;
    int page = -1;
    int totalCount = -1;
    int totalPage = -1;
    std::vector<s_LayerBrief> list;
    AJSON(count, page, totalCount, totalPage, list)
};

// ---- what reports and requests carry

struct s_LayerId {
    int layerId = -1;
    AJSON(layerId)
};

struct s_LayerSwitch {
    int layerId = -1;
    int enable = -1;
    AJSON(layerId, enable)
};

struct s_LayerSource {
    int layerId = -1;
    s_LayerSourceBody source;
    AJSON(layerId, source)
};

struct s_LayerTransitionFollow {
    int layerId = -1;
    int enable = -1;
    AJSON(layerId, enable)
};

// ---- what never travels

/// A layer by its number and its identity.
struct s_LayerUniqueId {
    int layerId = -1;
    s_LayerIdObj layerIdObj;

    friend bool operator==(const s_LayerUniqueId& a, const s_LayerUniqueId& b) {
        return a.layerId == b.layerId && a.layerIdObj == b.layerIdObj;
    }
};

/// What is told when a layer opens or closes.
struct s_LayerData {
    int layerId = -1;
    s_LayerIdObj layerIdObj;
    int enable = 0;
    int sourceId = 0;
};

}  // namespace LCD::ProtocolImpl
