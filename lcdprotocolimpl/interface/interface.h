// Inputs and outputs, as a list shows them.
#pragma once

#include <cstdint>
#include <list>
#include <string>

#include "json/reflection.h"

namespace LCD::ProtocolImpl {

/// Kinds of interfaces, as bits.
enum class InterfaceType : std::int32_t {
    Other = 1,
    Input = 2,
    Output = 92,  ///< the bits 4, 8, 16 and 64: all kinds of outputs
};

/// The physical address of an interface.
struct s_InterfaceIdObj {
    int nodeId = -1;
    int slotId = -1;
    int connectorId = -1;
    int splitId = -1;
    AJSON(nodeId, slotId, connectorId, splitId)
};

struct s_InterfaceCopy {
    int type = -1;
    int id = -1;
    AJSON(type, id)
};

struct s_InterfaceConnector {
    int interfaceType = -1;  ///< bits of InterfaceType
    int type = -1;           ///< of the connector; 61: an expansion source
    int workMode = -1;
    s_InterfaceCopy copyInfo;
    int capacity = -1;
    AJSON(interfaceType, type, workMode, copyInfo, capacity)
};

struct s_InterfaceScreen {
    std::string name;
    AJSON(name)
};

struct s_InterfaceAuxiliary {
    int online = -1;
    s_InterfaceConnector connectorInfo;
    s_InterfaceScreen screenInfo;
    int group = -1;
    std::string alias;
    AJSON(online, connectorInfo, screenInfo, group, alias)
};

struct s_InterfaceGeneralBody {
    std::string name = "N/A";
    AJSON(name)
};

struct s_ThumbTiming {
    int interlaced = -1;
    float frame = 0;  ///< frames a second
    int width = -1;
    int height = -1;
    AJSON(interlaced, frame, width, height)
};

struct s_InterfaceBrief {
    int interfaceId = -1;
    int state = -1;
    s_InterfaceIdObj interfaceIdObj;
    s_InterfaceAuxiliary auxiliaryInfo;
    s_InterfaceGeneralBody general;
    s_ThumbTiming actualThumbTiming;
    AJSON(interfaceId, state, interfaceIdObj, auxiliaryInfo, general, actualThumbTiming)
};

struct s_InterfaceBriefPage {
    int count = -1;
    int page = -1;
    int totalCount = -1;
    int totalPage = -1;
    std::list<s_InterfaceBrief> list;
    AJSON(count, page, totalCount, totalPage, list)
};

/// A rename.
struct s_InterfaceGeneral {
    int interfaceId = -1;
    s_InterfaceGeneralBody general;
    AJSON(interfaceId, general)
};

}  // namespace LCD::ProtocolImpl
