// The rows of each family; a family's file has the actions that only its rows need.
#pragma once

#include <string_view>
#include <vector>

#include "devicesim/table.h"

namespace devicesim {

inline constexpr std::string_view kLoginPath = "/zelto/v1/system/auth/login";  // the one that needs no token
inline constexpr std::string_view kControlPrefix = "/sim/";

std::vector<Row> sessionRows();
std::vector<Row> customRows();
std::vector<Row> systemRows();
std::vector<Row> screenRows();
std::vector<Row> controlRows();

std::vector<Row> allRows();

}  // namespace devicesim
