#include "devicesim/table.h"

#include <fmt/format.h>

#include <algorithm>
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

}  // namespace

json recordAt(const Row& row, const json& state, const Place& place) {
    const json& value = state.at(place);
    if (row.key.empty()) {
        return value.is_structured() ? value : json{{place.back(), value}};
    }
    if (row.place.ends_with('*')) {
        return value;
    }
    const std::string key(row.key);
    return {{key, state.at(place.parent_pointer()).at(key)}, {place.back(), value}};
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
    const auto [begin, end] = byPath_.equal_range(path);
    const auto found = std::find_if(begin, end, [verb](const auto& entry) { return entry.second->verb == verb; });
    return found == end ? nullptr : found->second;
}

std::vector<Table::Reported> Table::reportsOf(const Place& changed, const json& state) const {
    const std::vector<std::string> changedNames = steps(changed);
    std::vector<Reported> around;
    std::vector<Reported> within;
    std::set<std::string_view> seen;
    std::pair<std::size_t, std::size_t> innermost;  // depth; of two equally deep the one with fewer stars
    for (const Row& row : rows_) {
        if (row.report == 0 || row.body == nullptr || !seen.insert(row.place).second) {
            continue;
        }
        const std::vector<std::string> pattern = steps(Place(std::string(row.place)));
        std::vector<Place> places;
        match(pattern, changedNames, state, Place(), places);
        if (places.empty()) {
            continue;
        }
        if (pattern.size() > changedNames.size()) {
            within.emplace_back(&row, std::move(places));
            continue;
        }
        const auto stars = static_cast<std::size_t>(std::count(pattern.begin(), pattern.end(), "*"));
        if (const std::pair rank(pattern.size(), pattern.size() - stars); around.empty() || rank > innermost) {
            innermost = rank;
            around = {{&row, std::move(places)}};
        }
    }
    return around.empty() ? within : around;
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

void Call::answer(const json& data) { reply.body = envelope(0, "", data); }

std::string envelope(int code, std::string_view message, const json& data) {
    return fmt::format("{{\"code\":{},\"message\":{},\"data\":{}}}", code, json(message).dump(), data.dump());
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
