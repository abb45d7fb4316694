#include "panel/kind.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <nlohmann/json.hpp>

#include "panel/compare.h"

namespace panel {

using nlohmann::json;

namespace {

template <class Named>
std::vector<std::string> namesOf(const std::vector<Named>& all) {
    std::vector<std::string> names;
    std::transform(all.begin(), all.end(), std::back_inserter(names), [](const Named& each) { return each.name; });
    return names;
}

template <class Named>
const Named* named(const std::vector<Named>& all, const std::string& name) {
    const auto found = std::find_if(all.begin(), all.end(), [&](const Named& each) { return each.name == name; });
    return found == all.end() ? nullptr : &*found;
}

}  // namespace

Kind told(Kind kind) {
    kind.onlyTold = true;
    return kind;
}

Kind mirrors(Kind kind, Mirrored mirrored) {
    kind.mirrored = std::move(mirrored);
    return kind;
}

Kind mirrors(Kind kind, const char* place, std::vector<Stale> stale) {
    return mirrors(std::move(kind), {.device = [pointer = json::json_pointer(place)](
                                                   const json& state, const json&) { return state.at(pointer); },
                                     .stale = std::move(stale)});
}

const Kind* Component::kind(int value) const {
    const auto found =
        std::find_if(kinds.begin(), kinds.end(), [value](const Kind& each) { return each.value == value; });
    return found == kinds.end() ? nullptr : &*found;
}

const std::vector<Component>& components() {
    static const std::vector<Component> all = [] {
        std::vector<Component> rows;
        for (auto* family :
             {&sessionRows, &nodeRows, &screenRows, &layerRows, &interfaceRows, &presetRows, &assessRows}) {
            for (Component& row : family()) {
                rows.push_back(std::move(row));
            }
        }
        return rows;
    }();
    return all;
}

const Component& componentNamed(const std::string& name) {
    const Component* const found = named(components(), name);
    return found != nullptr
               ? *found
               : throw unknownName("component", name, namesOf(components()), "\"lcdpanel list\" shows all of them.");
}

const Kind& kindNamed(const Component& component, const std::string& name) {
    const Kind* const found = named(component.kinds, name);
    return found != nullptr ? *found
                            : throw unknownName("kind of " + component.name, name, namesOf(component.kinds),
                                                fmt::format("\"lcdpanel list {}\" shows all of them.", component.name));
}

std::any keyOf(const Component& component, const Kind& kind, const std::string& text) {
    if (component.key.empty()) {
        return text.empty() ? std::any()
                            : throw BadInput(fmt::format("{} {} is asked for without a key: leave \"{}\" out",
                                                         component.name, kind.name, text));
    }
    if (kind.parseQuestion) {
        return !text.empty() ? kind.parseQuestion(text)
                             : throw BadInput(fmt::format("{} {} is asked with a {}: give it as JSON after the kind",
                                                          component.name, kind.name, kind.question));
    }
    int number = -1;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (!text.empty() && (error != std::errc() || end != text.data() + text.size())) {
        throw BadInput(fmt::format("the key of {} {} is a whole number, not \"{}\"", component.name, kind.name, text));
    }
    return number;
}

namespace detail {

void requireJson(const std::string& text) {
    try {
        [[maybe_unused]] const json whole = json::parse(text);
    } catch (const json::exception& error) {
        const std::string what = error.what();
        throw BadInput(fmt::format("{} is no JSON: {}", text, what.substr(what.find("] ") + 2)));
    }
}

void requireTaken(const std::string& given, const std::string& taken, const std::string& type) {
    for (const Difference& each : differences(json::parse(given), json::parse(taken))) {
        throw BadInput(fmt::format("{} can't be {} in a {}, which looks like this: {}",
                                   each.place.empty() ? "the whole" : each.place, each.mirror.dump(), type, taken));
    }
}

}  // namespace detail

}  // namespace panel
