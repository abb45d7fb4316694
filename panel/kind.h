// What the panel tool knows of components: a row for each kind of delivery and change.
//
// A component's rows say which type a kind delivers or takes. Printing, parsing and the calls through the interface
// follow from the types.
#pragma once

#include <any>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "json/ajson.h"

namespace panel {

using Delivery = std::function<void(std::any)>;
using SetResult = std::function<void(bool)>;

template <class T>
std::string toJson(const T& value) {
    ajson::ajson_string_stream out;
    ajson::write(out, value);
    return std::string(out.data(), out.size());
}

/// One value of a component's RequestCBType.
struct Kind {
    std::string name;
    int value = 0;
    /// The payload of a delivery as JSON; null for a kind that is never delivered.
    std::function<std::string(const std::any&)> print;
    /// A change's payload from JSON; null for a kind that can't be set. Raises std::exception.
    std::function<std::any(const std::string&)> parse;
};

/// A kind that delivers a `std::shared_ptr<U>`.
template <class U, class CB>
Kind delivers(const char* name, CB value) {
    return {name,
            static_cast<int>(value),
            [](const std::any& payload) { return toJson(*std::any_cast<const std::shared_ptr<U>&>(payload)); },
            {}};
}

/// ... and is set by a `std::shared_ptr<Record>`.
template <class Record>
Kind settable(Kind kind) {
    kind.parse = [](const std::string& text) -> std::any {
        auto record = std::make_shared<Record>();
        ajson::reader in(text);
        ajson::detail::read_document(in, ajson::detail::type_of<Record>(), record.get());
        return record;
    };
    return kind;
}

/// One component, behind the calls that its interface declares. `object` is what the host's look-up gave.
struct Component {
    std::string name;
    std::string lookup;
    std::vector<Kind> kinds;
    void (*subscribe)(void* object, const std::string& name, int kind, const Delivery& callback);
    void (*get)(void* object, const std::string& name, int kind, const Delivery& callback, int key);
    /// Null for a component without changes.
    void (*set)(void* object, const std::string& name, int kind, int key, const std::any& data,
                const SetResult& callback);

    const Kind* kind(int value) const;
};

template <class Interface>
Component component(const char* name, const char* lookup, std::vector<Kind> kinds) {
    using CB = typename Interface::RequestCBType;
    Component row{name, lookup, std::move(kinds), nullptr, nullptr, nullptr};
    row.subscribe = [](void* object, const std::string& subscriber, int kind, const Delivery& callback) {
        static_cast<Interface*>(object)->registerRequestCallBack(subscriber, static_cast<CB>(kind), callback);
    };
    row.get = [](void* object, const std::string& subscriber, int kind, const Delivery& callback,
                 [[maybe_unused]] int key) {
        auto& target = *static_cast<Interface*>(object);
        const auto type = static_cast<CB>(kind);
        if constexpr (requires { target.asyncGetSubData(subscriber, type, callback, key); }) {
            target.asyncGetSubData(subscriber, type, callback, key);
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
/// The component of that name. Raises std::out_of_range.
const Component& componentNamed(const std::string& name);

// The rows, by family.
std::vector<Component> sessionRows();
std::vector<Component> screenRows();

}  // namespace panel
