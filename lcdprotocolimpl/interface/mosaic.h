// Mosaic sources.
#pragma once

#include <vector>

#include "json/reflection.h"

namespace LCD::ProtocolImpl {

struct s_InterfacePos {
    int x = -1;
    int y = -1;
    int width = -1;
    int height = -1;
    AJSON(x, y, width, height)
};

struct s_InterfaceCrop {
    int enable = -1;
    int width = -1;
    int height = -1;
    int x = -1;
    int y = -1;
    AJSON(enable, width, height, x, y)
};

/// One source of a mosaic.
struct s_MOSAICSourceList {
    int id = -1;
    int rectanglePosition = -1;
    int sourcePriority = -1;
    s_InterfacePos pos;
    s_InterfaceCrop crop;
    AJSON(id, rectanglePosition, sourcePriority, pos, crop)
};

struct s_InterfaceMOSAICDetailBody {
    int interfaceId = -1;
    int templateId = -1;
    std::vector<s_MOSAICSourceList> sourceList;
    AJSON(interfaceId, templateId, sourceList)
};

}  // namespace LCD::ProtocolImpl
