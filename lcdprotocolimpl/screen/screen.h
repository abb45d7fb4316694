// Screens, as a list shows them.
#pragma once

#include <list>
#include <string>

#include "json/reflection.h"

namespace LCD::ProtocolImpl {

struct s_ScreenIdObj {
    int id = -1;
    int type = -1;  ///< 2 and 32: a regular screen
    AJSON(id, type)
};

struct s_ScreenArea {
    int areaId = -1;
    std::string areaName;
    AJSON(areaId, areaName)
};

struct s_ScreenGeneral {
    std::string name;
    s_ScreenArea area;
    AJSON(name, area)
};

struct s_ScreenSplice {
    int row = -1;
    int column = -1;
    AJSON(row, column)
};

struct s_ScreenMosaic {
    int type = -1;
    s_ScreenSplice splice;
    AJSON(type, splice)
};

struct s_ScreenBrief {
    int screenId = -1;
    s_ScreenIdObj screenIdObj;
    s_ScreenGeneral general;
    s_ScreenMosaic mosaic;
    int enable = -1;
    AJSON(screenId, screenIdObj, general, mosaic, enable)
};

struct s_ScreenBriefPage {
    int count = -1;
    int page = -1;
    int totalCount = -1;
    int totalPage = -1;
    std::list<s_ScreenBrief> list;
    AJSON(count, page, totalCount, totalPage, list)
};

}  // namespace LCD::ProtocolImpl
