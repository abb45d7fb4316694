#include "panel/kind.h"

#include <algorithm>

namespace panel {

const Kind* Component::kind(int value) const {
    const auto found =
        std::find_if(kinds.begin(), kinds.end(), [value](const Kind& each) { return each.value == value; });
    return found == kinds.end() ? nullptr : &*found;
}

const std::vector<Component>& components() {
    static const std::vector<Component> all = [] {
        std::vector<Component> rows;
        for (auto* family : {&sessionRows, &screenRows}) {
            for (Component& row : family()) {
                rows.push_back(std::move(row));
            }
        }
        return rows;
    }();
    return all;
}

const Component& componentNamed(const std::string& name) {
    for (const Component& each : components()) {
        if (each.name == name) {
            return each;
        }
    }
    throw std::out_of_range("no component " + name);
}

}  // namespace panel
