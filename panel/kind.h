// What the panel tool knows of components: a row for each kind of delivery and change.
//
// A component's rows say which type a kind delivers or takes. Printing, parsing and the calls through the interface
// follow from the types.
#pragma once

#include <any>
#include <cstdint>
#include <functional>
#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "json/ajson.h"
#include "panel/errors.h"
#include "panel/typetext.h"

namespace panel {

using Delivery = std::function<void(std::any)>;
using SetResult = std::function<void(bool)>;

template <class T>
std::string toJson(const T& value) {
    ajson::ajson_string_stream out;
    ajson::write(out, value);
    return std::string(out.data(), out.size());
}

template <class Pair>
std::string pairText(const Pair& value) {
    return "[" + toJson(value.first) + "," + toJson(value.second) + "]";
}

/// A record from JSON. Raises `BadInput` for what is no JSON, and for what the record would not hold as it stands:
/// unknown members and values of other types.
template <class Record>
std::shared_ptr<Record> fromJson(const std::string& text);

/// A place of a mirror that may differ from the device by design.
struct Stale {
    std::string place;  ///< JSON pointer within the delivery; "*" stands for any element or member
    std::string why;
    bool reloadBrings = true;  ///< the next fetch mends it
};

/// What of the device a delivery shows.
struct Mirrored {
    /// The device's own, from its state; `mirror` is the delivery.
    std::function<nlohmann::json(const nlohmann::json& state, const nlohmann::json& mirror)> device;
    /// What of the delivery is compared; null: all.
    std::function<nlohmann::json(const nlohmann::json& mirror)> reduced = {};
    std::string identity = {};  ///< of a list's records the member by which they are known, whatever their order
    std::vector<Stale> stale = {};
    std::string key = {};  ///< to ask with
    bool silentWhenEmpty = false;
};

/// One value of a component's RequestCBType.
struct Kind {
    std::string name;
    int value = 0;
    std::string delivered = {};  ///< the type; empty for a kind that is never delivered
    std::string remark = {};     ///< when it is delivered, or why never
    std::string taken = {};      ///< the type of a change; empty for a kind that can't be set
    /// The payload of a delivery as JSON.
    std::function<std::string(const std::any&)> print = {};
    /// A change's payload from JSON. Raises `BadInput`.
    std::function<std::any(const std::string&)> parse = {};
    std::string question = {};  ///< the type of the record that the kind asks with
    std::function<std::any(const std::string&)> parseQuestion = {};
    Mirrored mirrored = {};  ///< without `device` for a kind that shows no part of the device's state
    bool onlyTold = false;   ///< asking delivers nothing, or nothing yet: it tells of events
};

/// A kind that delivers a `std::shared_ptr<U>`. A type without a JSON form of its own needs `text`.
template <class U, class CB>
Kind delivers(const char* name, CB value, const char* remark = "", std::string (*text)(const U&) = &toJson<U>) {
    Kind kind{name, static_cast<int>(value), typeText<U>(), remark};
    kind.print = [text](const std::any& payload) { return text(*std::any_cast<const std::shared_ptr<U>&>(payload)); };
    return kind;
}

template <class CB>
Kind neverDelivered(const char* name, CB value, const char* why) {
    return {name, static_cast<int>(value), "", why};
}

/// ... and is set by a `std::shared_ptr<Record>`.
template <class Record>
Kind settable(Kind kind) {
    kind.taken = typeText<Record>();
    kind.parse = [](const std::string& text) -> std::any { return fromJson<Record>(text); };
    return kind;
}

/// ... and is asked with a `std::shared_ptr<Record>`.
template <class Record>
Kind askedWith(Kind kind) {
    kind.question = typeText<Record>();
    kind.parseQuestion = [](const std::string& text) -> std::any { return fromJson<Record>(text); };
    return kind;
}

/// ... and tells of events, so that asking for it shows the last one at most.
Kind told(Kind kind);

/// ... and shows this place of the device's state.
Kind mirrors(Kind kind, const char* place, std::vector<Stale> stale = {});
Kind mirrors(Kind kind, Mirrored mirrored);

/// One component, behind the calls that its interface declares. `object` is what the host's look-up gave.
struct Component {
    std::string name;
    std::string lookup;
    std::vector<Kind> kinds;
    std::vector<std::uint32_t> reports;  ///< the ids of those that it decodes
    std::string path;                    ///< of its fetches, if other threads than the one that delivers make them too
    std::string key;                     ///< what `get` can be given beside the kind, for a person; empty: nothing
    void (*subscribe)(void* object, const std::string& name, int kind, const Delivery& callback);
    void (*get)(void* object, const std::string& name, int kind, const Delivery& callback, const std::any& key);
    /// Null for a component without changes.
    void (*set)(void* object, const std::string& name, int kind, int key, const std::any& data,
                const SetResult& callback);

    const Kind* kind(int value) const;
};

template <class Interface>
Component component(const char* name, const char* lookup, std::vector<Kind> kinds,
                    std::vector<std::uint32_t> reports = {}, const char* path = "") {
    using CB = typename Interface::RequestCBType;
    constexpr bool takesNumber = requires(Interface & target, const Delivery& callback, int number) {
        target.asyncGetSubData(std::string(), CB{}, callback, number);
    };
    constexpr bool takesQuestion = requires(Interface & target, const Delivery& callback) {
        target.asyncGetSubData(std::string(), CB{}, std::any(), callback);
    };
    Component row{name, lookup, std::move(kinds), std::move(reports), path, "", nullptr, nullptr, nullptr};
    row.key = takesNumber ? "NUMBER" : takesQuestion ? "JSON" : "";
    row.subscribe = [](void* object, const std::string& subscriber, int kind, const Delivery& callback) {
        static_cast<Interface*>(object)->registerRequestCallBack(subscriber, static_cast<CB>(kind), callback);
    };
    row.get = [](void* object, const std::string& subscriber, int kind, const Delivery& callback,
                 [[maybe_unused]] const std::any& key) {
        auto& target = *static_cast<Interface*>(object);
        const auto type = static_cast<CB>(kind);
        if constexpr (takesNumber) {
            const int* const number = std::any_cast<int>(&key);
            target.asyncGetSubData(subscriber, type, callback, number == nullptr ? -1 : *number);
        } else if constexpr (takesQuestion) {
            target.asyncGetSubData(subscriber, type, key, callback);
        } else {
            target.asyncGetSubData(subscriber, type, callback);
        }
    };
    if constexpr (requires(Interface & target, const std::any& data, const SetResult& callback) {
                      target.asyncSetSubData(std::string(), CB{}, data, callback);
                  }) {
        row.set = [](void* object, const std::string& requester, int kind, int, const std::any& data,
                     const SetResult& callback) {
            static_cast<Interface*>(object)->asyncSetSubData(requester, static_cast<CB>(kind), data, callback);
        };
    } else if constexpr (requires(Interface & target, const std::any& data, const SetResult& callback) {
                             target.asyncSetSubData(std::string(), CB{}, int{}, data, callback);
                         }) {
        row.set = [](void* object, const std::string& requester, int kind, int key, const std::any& data,
                     const SetResult& callback) {
            static_cast<Interface*>(object)->asyncSetSubData(requester, static_cast<CB>(kind), key, data, callback);
        };
    }
    return row;
}

/// All components that the panel tool can show, in the order in which they are listed.
const std::vector<Component>& components();
/// The component of that name. Raises `BadInput` with the name that is most like it.
const Component& componentNamed(const std::string& name);
const Kind& kindNamed(const Component& component, const std::string& name);
/// The key that a kind is asked with, from its text. Raises `BadInput`.
std::any keyOf(const Component& component, const Kind& kind, const std::string& text);

namespace detail {
/// Raises `BadInput` unless `text` is JSON.
void requireJson(const std::string& text);
/// Raises `BadInput` for what `given` has and `taken`, the record made of it, does not.
void requireTaken(const std::string& given, const std::string& taken, const std::string& type);
}  // namespace detail

template <class Record>
std::shared_ptr<Record> fromJson(const std::string& text) {
    detail::requireJson(text);
    auto record = std::make_shared<Record>();
    try {
        ajson::reader in(text);
        ajson::detail::read_document(in, ajson::detail::type_of<Record>(), record.get());
    } catch (const std::exception& error) {
        throw BadInput(text + " is no " + typeText<Record>() + ": " + error.what());
    }
    detail::requireTaken(text, toJson(*record), typeText<Record>());
    return record;
}

// The rows, by family.
std::vector<Component> sessionRows();
std::vector<Component> nodeRows();
std::vector<Component> screenRows();
std::vector<Component> layerRows();
std::vector<Component> interfaceRows();
std::vector<Component> presetRows();
std::vector<Component> assessRows();

}  // namespace panel
