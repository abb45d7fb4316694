// The rows of each family; a family's file has the actions that only its rows need.
#pragma once

#include <string_view>
#include <vector>

#include "devicesim/table.h"

namespace devicesim {

inline constexpr std::string_view kLoginPath = "/zelto/v1/system/auth/login";  // the one that needs no token

std::vector<Row> sessionRows();
std::vector<Row> customRows();
std::vector<Row> systemRows();
std::vector<Row> screenRows();
std::vector<Row> takeRows();
std::vector<Row> layerRows();
std::vector<Row> interfaceRows();
std::vector<Row> timingRows();
std::vector<Row> nodeRows();
std::vector<Row> subcardRows();
std::vector<Row> backupRows();
std::vector<Row> presetRows();
std::vector<Row> assessRows();
std::vector<Row> controlRows();

std::vector<Row> allRows();

}  // namespace devicesim
