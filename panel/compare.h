// What differs between a mirror and its device.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace panel {

struct Difference {
    std::string place;  ///< JSON pointer within the delivery
    nlohmann::json mirror;
    nlohmann::json device;  ///< null where the device has nothing
};

/// Where `device` differs from `mirror`, as far as the mirror reaches: members that it doesn't know are passed over.
/// Numbers are equal when they are as floats, booleans when they are as 0 and 1. The records of a list belong
/// together by the member `identity`, if they have it, else by their place.
std::vector<Difference> differences(const nlohmann::json& mirror, const nlohmann::json& device,
                                    const std::string& identity = {});

/// Whether a place is one of those that `pattern` means, in which "*" stands for any name.
bool placeMatches(const std::string& place, const std::string& pattern);

}  // namespace panel
