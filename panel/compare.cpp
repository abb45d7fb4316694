#include "panel/compare.h"

#include <algorithm>
#include <sstream>

namespace panel {

using nlohmann::json;

namespace {

bool isNumber(const json& value) { return value.is_number() || value.is_boolean(); }

// The mirrors' own precision.
float asFloat(const json& value) { return value.is_boolean() ? value.get<bool>() : value.get<float>(); }

bool equal(const json& a, const json& b) { return a == b || (isNumber(a) && isNumber(b) && asFloat(a) == asFloat(b)); }

// The records of `list` in the order in which `like` has them, then the rest of them.
json arranged(json list, const json& like, const std::string& identity) {
    auto next = list.begin();
    for (const json& record : like) {
        const auto found = std::find_if(next, list.end(), [&](const json& each) {
            return record.is_object() && each.is_object() && record.contains(identity) && each.contains(identity) &&
                   each[identity] == record[identity];
        });
        if (found != list.end()) {
            std::rotate(next, found, found + 1);
            ++next;
        }
    }
    return list;
}

struct Comparison {
    const std::string& identity;
    std::vector<Difference> found = {};

    void collect(const json& mirror, const json& device, const std::string& place);
};

void Comparison::collect(const json& mirror, const json& device, const std::string& place) {
    const bool sameKind = (mirror.is_object() && device.is_object()) || (mirror.is_array() && device.is_array());
    if (!sameKind || (mirror.is_array() && mirror.size() != device.size())) {
        if (!equal(mirror, device)) {
            found.push_back({place, mirror, device});
        }
        return;
    }
    if (mirror.is_array()) {
        const json ordered = identity.empty() ? device : arranged(device, mirror, identity);
        for (std::size_t i = 0; i < mirror.size(); ++i) {
            collect(mirror[i], ordered[i], place + '/' + std::to_string(i));
        }
        return;
    }
    for (const auto& [name, value] : mirror.items()) {
        collect(value, device.value(name, json()), place + '/' + name);
    }
}

}  // namespace

std::vector<Difference> differences(const json& mirror, const json& device, const std::string& identity) {
    Comparison comparison{identity};
    comparison.collect(mirror, device, "");
    return std::move(comparison.found);
}

bool placeMatches(const std::string& place, const std::string& pattern) {
    std::istringstream places(place);
    std::istringstream patterns(pattern);
    std::string name;
    std::string wanted;
    while (std::getline(patterns, wanted, '/')) {
        if (!std::getline(places, name, '/') || (wanted != "*" && wanted != name)) {
            return false;
        }
    }
    return true;
}

}  // namespace panel
