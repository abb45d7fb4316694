// The shape of the component table: rows that carry their place, checked when they are compiled.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>
#include <type_traits>

#include "ktp/component.h"

namespace LCD::MemoryCacheImpl {

/// One component: its place in the catalogue of all components, its class, its name.
template <int Place, class Component, const char* Name>
struct Row {
    static constexpr int place = Place;
    static constexpr const char* name = Name;
    using component = Component;
};

template <class... Rows>
struct ComponentTable {
    static constexpr std::size_t size = sizeof...(Rows);

    /// The rows' records, ended by a null pointer.
    static constexpr std::array<const ktp::ComponentInfo*, size + 1> pointers() {
        return {&ktp::ComponentTmpl<typename Rows::component>::componentInfo..., nullptr};
    }

    template <class Component>
    static constexpr const char* nameOf() {
        const char* name = nullptr;
        ((name = std::is_same_v<Component, typename Rows::component> ? Rows::name : name), ...);
        return name;
    }

    static constexpr bool isAscending() {
        int last = 0;
        return ((Rows::place > last && (last = Rows::place) != 0) && ...);
    }

    static constexpr bool hasUniqueNames() {
        constexpr std::array<std::string_view, size> names{Rows::name...};
        for (std::size_t i = 0; i < size; ++i) {
            for (std::size_t k = 0; k < i; ++k) {
                if (names[i] == names[k]) {
                    return false;
                }
            }
        }
        return true;
    }
};

/// The plug-in's table, which is also exported by name.
const ktp::ComponentInfo* const* componentTable();

}  // namespace LCD::MemoryCacheImpl
