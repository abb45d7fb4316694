#include "devicesim/actions.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <optional>

#include "devicesim/wholenumber.h"

namespace devicesim {

namespace {

// What requests can make the state hold.
constexpr std::size_t kLongestText = 4096;  // bytes
constexpr std::size_t kLongestList = 4096;  // elements

std::string nameOf(json::value_t kind) {
    return kind == json::value_t::number_integer ? "number" : json(kind).type_name();
}

[[noreturn]] void missing(const std::string& name) {
    throw Refusal(Failure::Incomplete, fmt::format("{} is missing", name));
}

std::size_t queryNumber(const Call& call, const std::string& name, std::size_t otherwise) {
    const auto found = call.request.query.find(name);
    if (found == call.request.query.end()) {
        return otherwise;
    }
    const std::optional<std::size_t> value = wholeNumber<std::size_t>(found->second);
    if (value.value_or(0) == 0) {
        throw Refusal(Failure::WrongType, fmt::format("{} must be a number from 1", name));
    }
    return *value;
}

// The members that `names` gives, blanks between them; all if it is empty.
json shown(const json& record, std::string_view names) {
    if (names.empty()) {
        return record;
    }
    json some;
    while (!names.empty()) {
        const std::size_t end = std::min(names.find(' '), names.size());
        const Place member('/' + std::string(names.substr(0, end)));
        some[member] = record.at(member);
        names.remove_prefix(std::min(end + 1, names.size()));
    }
    return some;
}

// False if a member of the record or of its identity is asked for with another value.
bool picked(const Call& call, const json& record) {
    const auto differs = [&call](const json& owner) {
        return std::any_of(call.request.query.begin(), call.request.query.end(), [&owner](const auto& asked) {
            return owner.contains(asked.first) && textOf(owner[asked.first]) != asked.second;
        });
    };
    const auto items = record.items();
    return !differs(record) && std::none_of(items.begin(), items.end(), [&](const auto& item) {
        return item.key().ends_with("IdObj") && differs(item.value());
    });
}

}  // namespace

json::value_t kindOf(const json& value) {
    return value.is_number() || value.is_boolean() ? json::value_t::number_integer : value.type();
}

void requireKind(const json& value, json::value_t kind, const std::string& name) {
    if (kindOf(value) != kind) {
        throw Refusal(Failure::WrongType, fmt::format("{} must be of type {} but is of type {}", name, nameOf(kind),
                                                      nameOf(kindOf(value))));
    }
}

std::size_t indexOf(const json& list, const std::string& key, const json& record) {
    if (!record.is_object() || !record.contains(key)) {
        missing(key);
    }
    return indexWith(list, key, record[key]);
}

std::size_t indexWith(const json& list, const std::string& key, const json& id) {
    const json* const found = recordOf(list, key, id);
    if (found == nullptr) {
        throw Refusal(Failure::Unknown, fmt::format("there is no {} {}", key, id.dump()));
    }
    return static_cast<std::size_t>(found - &list.front());
}

const json* recordOf(const json& list, const std::string& key, const json& id) {
    const auto found =
        std::find_if(list.begin(), list.end(), [&](const json& element) { return element.at(key) == id; });
    return found == list.end() ? nullptr : &*found;
}

json* recordOf(json& list, const std::string& key, const json& id) {
    return const_cast<json*>(recordOf(std::as_const(list), key, id));
}

int lowestFree(const json& list, const std::string& key) {
    int number = 1;
    while (recordOf(list, key, number) != nullptr) {
        ++number;
    }
    return number;
}

void show(Call& call) {
    json data = call.here();
    if (data.is_array()) {
        for (json& record : data) {
            record = shown(record, call.row.wire);
        }
    }
    call.answer(data);
}

void showPage(Call& call) { call.answer(page(call, call.here())); }

json page(const Call& call, const json& records) {
    std::vector<const json*> all;
    for (const json& record : records) {
        if (picked(call, record)) {
            all.push_back(&record);
        }
    }
    const std::size_t limit = queryNumber(call, "limit", std::max<std::size_t>(all.size(), 1));
    const std::size_t number = queryNumber(call, "page", 1);
    const std::size_t pages = std::max<std::size_t>((all.size() + limit - 1) / limit, 1);
    json list = json::array();
    for (std::size_t i = (std::min(number, pages + 1) - 1) * limit; i < all.size() && list.size() < limit; ++i) {
        list.push_back(shown(*all[i], call.row.wire));
    }
    return {{"count", list.size()},
            {"page", number},
            {"totalCount", all.size()},
            {"totalPage", pages},
            {"list", std::move(list)}};
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
    const Place place(std::string(call.row.place));
    json& present = call.here();
    if (present.is_structured()) {
        take(present, call.body, "the body");
    } else {
        const std::string name = call.row.wire.empty() ? place.back() : std::string(call.row.wire);
        take(present, member(call.body, name, kindOf(present)), name);
    }
    call.reportChange({place});
    call.answer(nullptr);
}

void mergeEach(Call& call) { mergeRecords(call, call.body); }

void mergeOne(Call& call) { mergeRecords(call, json::array({call.body})); }

void mergeRecords(Call& call, const json& records) {
    const ListPlace place(call.row);
    const json& list = call.device.state.at(place.list);
    const auto part = [&place](const json& record) -> const json& {
        if (!place.member.empty() && !record.contains(place.name)) {
            missing(place.name);
        }
        return place.member.empty() ? record : record.at(place.name);
    };
    requireKind(records, json::value_t::array, "the body");
    std::vector<Place> places;
    for (const json& record : records) {
        places.push_back(place.of(indexOf(list, std::string(call.row.key), record)));
        requireFit(part(record), call.device.state.at(places.back()), place.member.empty() ? "a record" : place.name);
    }
    for (std::size_t i = 0; i < places.size(); ++i) {
        mergeInto(call.device.state.at(places[i]), part(records[i]));
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
    if ((value.is_array() && value.size() > kLongestList) ||
        (value.is_string() && value.get_ref<const std::string&>().size() > kLongestText)) {
        throw Refusal(Failure::WrongType, fmt::format("{} is too long", name));
    }
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
        present = present.is_number() && value.is_boolean() ? json(value.get<bool>() ? 1 : 0) : value;
        return;
    }
    for (const auto& item : present.items()) {
        if (value.contains(item.key())) {
            mergeInto(item.value(), value[item.key()]);
        }
    }
}

}  // namespace devicesim
