#include "devicesim/table.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <set>
#include <span>

namespace devicesim {

namespace {

using Names = std::span<const std::string>;

// Fills in the stars of `pattern` from `changed`, beyond its end with all that the state has there. Appends
// the places that both agree on.
void match(Names pattern, Names changed, const json& state, const Place& sofar, std::vector<Place>& places) {
    if (pattern.empty()) {
        places.push_back(sofar);
        return;
    }
    const std::string& name = pattern.front();
    const Names rest = changed.empty() ? changed : changed.subspan(1);
    const auto enter = [&](const std::string& step) {
        if (const Place next = sofar / step; state.contains(next)) {
            match(pattern.subspan(1), rest, state, next, places);
        }
    };
    if (!changed.empty()) {
        if (name == "*" || name == changed.front()) {
            enter(changed.front());
        }
    } else if (name != "*") {
        enter(name);
    } else {
        for (const auto& item : state.at(sofar).items()) {
            enter(item.key());
        }
    }
}

// The path without the control plane's prefix where that stands ahead of one of the device's own.
std::string_view devicePath(std::string_view path) {
    constexpr std::string_view kByItself = "/sim/zelto/";
    return path.starts_with(kByItself) ? path.substr(kControlPrefix.size() - 1) : path;
}

// "layerId=4" among the elements of a list.
std::optional<std::size_t> elementNamed(const json& list, const std::string& name) {
    const std::size_t equals = name.find('=');
    if (!list.is_array() || equals == std::string::npos) {
        return std::nullopt;
    }
    const auto found = std::find_if(list.begin(), list.end(), [&](const json& element) {
        const std::string member = name.substr(0, equals);
        return element.is_object() && element.contains(member) && textOf(element[member]) == name.substr(equals + 1);
    });
    return found == list.end() ? std::nullopt : std::optional(static_cast<std::size_t>(found - list.begin()));
}

}  // namespace

json recordAt(const Row& row, const json& state, const Place& place) {
    const json& value = state.at(place);
    if (row.key.empty()) {
        return value.is_structured() ? value : json{{row.wire.empty() ? place.back() : std::string(row.wire), value}};
    }
    const ListPlace within(row);
    if (within.member.empty()) {
        return value;
    }
    Place record = place;
    for (Place member = within.member; !member.empty(); member.pop_back()) {
        record.pop_back();
    }
    const std::string key(row.key);
    return {{key, state.at(record).at(key)}, {within.name, value}};
}

ListPlace::ListPlace(const Row& row) {
    const std::size_t star = row.place.find("/*");
    list = Place(std::string(row.place.substr(0, star)));
    if (star != std::string_view::npos && !row.place.ends_with('*')) {
        member = Place(std::string(row.place.substr(star + 2)));
        name = row.wire.empty() ? member.back() : std::string(row.wire);
    }
}

Table::Table(std::vector<Row> rows) : rows_(std::move(rows)) {
    for (const Row& row : rows_) {
        if (row.path.empty()) {
            continue;
        }
        if (find(row.verb, row.path) != nullptr) {
            throw std::logic_error(fmt::format("two rows for {} {}", row.verb, row.path));
        }
        byPath_.emplace(row.path, &row);
    }
}

const Row* Table::find(std::string_view verb, std::string_view path) const {
    const auto [begin, end] = byPath_.equal_range(devicePath(path));
    const auto found = std::find_if(begin, end, [verb](const auto& entry) { return entry.second->verb == verb; });
    return found == end ? nullptr : found->second;
}

bool Table::hasPath(std::string_view path) const { return byPath_.count(devicePath(path)) != 0; }

const Row& Table::reporting(std::uint32_t report) const {
    const auto found = std::find_if(rows_.begin(), rows_.end(),
                                    [report](const Row& row) { return row.report == report && row.body != nullptr; });
    return found != rows_.end() ? *found : throw std::logic_error(fmt::format("no row has report {:x}", report));
}

std::vector<Table::Reported> Table::placesOf(const Place& changed, const json& state) const {
    const std::vector<std::string> changedNames = steps(changed);
    std::vector<Reported> all;
    std::set<std::string_view> seen;
    for (const Row& row : rows_) {
        if (row.report == 0 || row.body == nullptr || !seen.insert(row.place).second) {
            continue;
        }
        std::vector<Place> places;
        match(steps(Place(std::string(row.place))), changedNames, state, Place(), places);
        if (!places.empty()) {
            all.emplace_back(&row, std::move(places));
        }
    }
    return all;
}

std::vector<Table::Reported> Table::allReports(const json& state) const { return placesOf(Place(), state); }

std::vector<Table::Reported> Table::reportsOf(const Place& changed, const json& state) const {
    const std::size_t depth = steps(changed).size();
    std::vector<Reported> around;
    std::vector<Reported> within;
    std::pair<std::size_t, std::size_t> innermost;  // depth; of two equally deep the one with fewer stars
    for (auto& [row, places] : placesOf(changed, state)) {
        const std::vector<std::string> pattern = steps(Place(std::string(row->place)));
        if (pattern.size() > depth) {
            within.emplace_back(row, std::move(places));
            continue;
        }
        const auto stars = static_cast<std::size_t>(std::count(pattern.begin(), pattern.end(), "*"));
        if (const std::pair rank(pattern.size(), pattern.size() - stars); around.empty() || rank > innermost) {
            innermost = rank;
            around = {{row, std::move(places)}};
        }
    }
    if (!around.empty()) {
        return around;
    }
    std::vector<Reported> outermost;
    for (const Reported& each : within) {
        if (std::none_of(within.begin(), within.end(), [&](const Reported& other) {
                return each.first->place.starts_with(std::string(other.first->place) + '/');
            })) {
            outermost.push_back(each);
        }
    }
    return outermost;
}

void Interior::reportChange(const Row& row, const std::vector<Place>& places, const Source& source) {
    json bodies = json::array();
    for (const Place& place : places) {
        bodies.push_back(row.body(row, state, place));
    }
    if (!row.key.empty()) {
        reports.push({row.report, bodies.dump(), source});
        return;
    }
    for (const json& body : bodies) {
        reports.push({row.report, body.dump(), source});
    }
}

Source Call::source() const {
    return request.path.starts_with(kControlPrefix) ? Source{std::string(kDeviceToken), 0}
                                                    : Source{request.token, request.sequence};
}

void Interior::restart() {
    tokens.expire();
    reports.restart();
    drag.reset();
}

void Call::answer(const json& data) { reply.body = envelope(0, "", data); }

std::string envelope(int code, std::string_view message, const json& data) {
    return fmt::format("{{\"code\":{},\"message\":{},\"data\":{}}}", code, json(message).dump(), data.dump());
}

Place findPlace(const json& state, const std::string& pointer) {
    Place place;
    for (const std::string& name : steps(Place(pointer))) {
        const auto index = state.contains(place) ? elementNamed(state.at(place), name) : std::nullopt;
        place = index ? place / *index : place / name;
    }
    return place;
}

std::string textOf(const json& value) { return value.is_string() ? value.get<std::string>() : value.dump(); }

json parsed(const std::string& text) {
    constexpr int kDeepest = 64;
    try {
        return json::parse(text, [](int depth, json::parse_event_t, const json&) {
            return depth <= kDeepest ? true : throw Refusal(Failure::NotJson, "the body is nested too deeply");
        });
    } catch (const json::exception&) {
        throw Refusal(Failure::NotJson, "the body is not JSON");
    }
}

std::vector<std::string> steps(Place place) {
    std::vector<std::string> names;
    for (; !place.empty(); place.pop_back()) {
        names.push_back(place.back());
    }
    std::reverse(names.begin(), names.end());
    return names;
}

}  // namespace devicesim
