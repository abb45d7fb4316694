// The state that the device starts with, read from files that a person can edit.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

namespace devicesim {

/// One member for each file NAME.json of the folder. Throws std::runtime_error naming folder or file.
nlohmann::json loadStartData(const std::string& folder);

}  // namespace devicesim
