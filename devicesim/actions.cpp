#include "devicesim/actions.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cstddef>

namespace devicesim {

namespace {

// Numbers of all sorts and booleans may stand for each other.
json::value_t kindOf(const json& value) {
    return value.is_number() || value.is_boolean() ? json::value_t::number_integer : value.type();
}

std::string nameOf(json::value_t kind) {
    return kind == json::value_t::number_integer ? "number" : json(kind).type_name();
}

void requireKind(const json& value, json::value_t kind, const std::string& name) {
    if (kindOf(value) != kind) {
        throw Refusal(Failure::WrongType, fmt::format("{} must be of type {} but is of type {}", name, nameOf(kind),
                                                      nameOf(kindOf(value))));
    }
}

[[noreturn]] void missing(const std::string& name) {
    throw Refusal(Failure::Incomplete, fmt::format("{} is missing", name));
}

std::size_t queryNumber(const Call& call, const std::string& name, std::size_t otherwise) {
    const auto found = call.request.query.find(name);
    if (found == call.request.query.end()) {
        return otherwise;
    }
    const std::string& text = found->second;
    std::size_t value = 0;
    if (std::from_chars(text.data(), text.data() + text.size(), value).ec != std::errc() || value == 0) {
        throw Refusal(Failure::WrongType, fmt::format("{} must be a number from 1", name));
    }
    return value;
}

// A row's place in a list: the list, the star, and perhaps the one member of its records that the row is
// about.
struct ListPlace {
    explicit ListPlace(const Row& row) {
        const std::size_t star = row.place.find("/*");
        list = Place(std::string(row.place.substr(0, star)));
        if (star + 2 < row.place.size()) {
            member = row.place.substr(star + 3);
        }
    }
    Place of(std::size_t index) const {
        const Place element = list / index;
        return member.empty() ? element : element / member;
    }

    Place list;
    std::string member;
};

std::size_t indexOf(const json& list, const std::string& key, const json& record) {
    if (!record.is_object() || !record.contains(key)) {
        missing(key);
    }
    const json& id = record[key];
    const auto found =
        std::find_if(list.begin(), list.end(), [&](const json& element) { return element.at(key) == id; });
    if (found == list.end()) {
        throw Refusal(Failure::Unknown, fmt::format("there is no {} {}", key, id.dump()));
    }
    return static_cast<std::size_t>(found - list.begin());
}

}  // namespace

void show(Call& call) { call.answer(call.here()); }

void showPage(Call& call) {
    json list = call.here();
    const auto wanted =
        call.row.key.empty() ? call.request.query.end() : call.request.query.find(std::string(call.row.key));
    if (wanted != call.request.query.end()) {
        std::erase_if(list.get_ref<json::array_t&>(), [&](const json& element) {
            const json& id = element.at(wanted->first);
            return (id.is_string() ? id.get<std::string>() : id.dump()) != wanted->second;
        });
    }
    const std::size_t total = list.size();
    const std::size_t limit = queryNumber(call, "limit", std::max<std::size_t>(total, 1));
    const std::size_t page = queryNumber(call, "page", 1);
    const std::size_t pages = std::max<std::size_t>((total + limit - 1) / limit, 1);
    const std::size_t begin = page > pages ? total : (page - 1) * limit;
    auto& elements = list.get_ref<json::array_t&>();
    elements.resize(std::min(total, begin + limit));
    elements.erase(elements.begin(), elements.begin() + static_cast<std::ptrdiff_t>(begin));
    const std::size_t count = elements.size();
    call.answer(
        {{"count", count}, {"page", page}, {"totalCount", total}, {"totalPage", pages}, {"list", std::move(list)}});
}

void replace(Call& call) {
    for (const auto& item : call.here().items()) {
        if (!call.body.contains(item.key())) {
            missing(item.key());
        }
    }
    merge(call);
}

void merge(Call& call) {
    take(call.here(), call.body, "the body");
    call.reportChange({Place(std::string(call.row.place))});
    call.answer(nullptr);
}

void mergeEach(Call& call) {
    const ListPlace place(call.row);
    json& list = call.device.state.at(place.list);
    const auto part = [&place](const json& record) -> const json& {
        if (!place.member.empty() && !record.contains(place.member)) {
            missing(place.member);
        }
        return place.member.empty() ? record : record.at(place.member);
    };
    requireKind(call.body, json::value_t::array, "the body");
    std::vector<Place> places;
    for (const json& record : call.body) {
        places.push_back(place.of(indexOf(list, std::string(call.row.key), record)));
        requireFit(part(record), call.device.state.at(places.back()), place.member.empty() ? "a record" : place.member);
    }
    for (std::size_t i = 0; i < places.size(); ++i) {
        mergeInto(call.device.state.at(places[i]), part(call.body[i]));
    }
    call.reportChange(places);
    call.answer(nullptr);
}

void removeEach(Call& call) {
    const std::string key(call.row.key);
    auto& list = call.device.state.at(ListPlace(call.row).list).get_ref<json::array_t&>();
    requireKind(call.body, json::value_t::array, "the body");
    json gone = json::array();
    for (const json& record : call.body) {
        indexOf(list, key, record);
        gone.push_back({{key, record[key]}});
    }
    std::erase_if(list, [&](const json& element) {
        return std::any_of(gone.begin(), gone.end(), [&](const json& id) { return id[key] == element.at(key); });
    });
    call.report(gone);
    call.answer(nullptr);
}

const json& member(const json& record, const std::string& name, json::value_t kind) {
    if (!record.is_object() || !record.contains(name)) {
        missing(name);
    }
    requireKind(record[name], kind, name);
    return record[name];
}

void requireFit(const json& value, const json& present, const std::string& name) {
    if (present.is_null()) {
        return;
    }
    requireKind(value, kindOf(present), name);
    if (present.is_object()) {
        for (const auto& item : present.items()) {
            if (value.contains(item.key())) {
                requireFit(value[item.key()], item.value(), item.key());
            }
        }
    } else if (present.is_array() && !present.empty()) {
        for (const json& element : value) {
            requireFit(element, present.front(), "an element of " + name);
        }
    }
}

void take(json& present, const json& value, const std::string& name) {
    requireFit(value, present, name);
    const auto items = present.items();
    if (present.is_object() &&
        std::none_of(items.begin(), items.end(), [&](const auto& item) { return value.contains(item.key()); })) {
        throw Refusal(Failure::Incomplete, name + " has no member of this record");
    }
    mergeInto(present, value);
}

void mergeInto(json& present, const json& value) {
    if (!present.is_object()) {
        present = value;
        return;
    }
    for (const auto& item : present.items()) {
        if (value.contains(item.key())) {
            mergeInto(item.value(), value[item.key()]);
        }
    }
}

}  // namespace devicesim
