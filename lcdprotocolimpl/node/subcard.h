// What the connectors of the cards work as.
#pragma once

#include <vector>

#include "json/reflection.h"

namespace LCD::ProtocolImpl {

struct s_SubcardModeConnectorCopyInfo {
    int type = -1;
    int id = -1;
    AJSON(type, id)
};

struct s_SubcardModeConnector {
    int index = -1;
    int type = -1;
    int workMode = -1;
    int capacityMode = -1;
    s_SubcardModeConnectorCopyInfo copyInfo;
    AJSON(index, type, workMode, capacityMode, copyInfo)
};

struct s_SubcardModeBody {
    int slotId = -1;
    int modelId = -1;
    int cardType = -1;
    std::vector<s_SubcardModeConnector> connectors;
    AJSON(slotId, modelId, cardType, connectors)
};

struct s_NodeSubcardsMode {
    int nodeId = -1;
    std::vector<s_SubcardModeBody> subcards;
    AJSON(nodeId, subcards)
};

}  // namespace LCD::ProtocolImpl
