// Any record, member by member, known at compile time: what the peers are driven by.
#pragma once

#include <array>
#include <list>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "json/reflection.h"

namespace bench {

template <class T>
inline constexpr bool isRecord = ajson::detail::is_record<T>::value;
template <class T>
inline constexpr bool isSequence = ajson::detail::is_sequence<T>::value;

template <class T>
using Members = decltype(std::declval<T&>().ajson_members());

/// The member names of a record.
template <class T>
constexpr auto namesOf() {
    std::array<std::string_view, std::tuple_size_v<Members<T>>> names{};
    std::string_view rest = T::ajson_fields();
    for (std::string_view& name : names) {
        name = rest.substr(0, rest.find(','));
        rest.remove_prefix(rest.size() == name.size() ? name.size() : name.size() + 1);
        rest.remove_prefix(rest.find_first_not_of(' ') == rest.npos ? 0 : rest.find_first_not_of(' '));
    }
    return names;
}
template <class T>
inline constexpr auto kNames = namesOf<T>();

/// Calls `visit(name, member)` for each member in list order.
template <class T, class Visit>
void forEachMember(T& record, Visit&& visit) {
    auto members = const_cast<std::remove_const_t<T>&>(record).ajson_members();
    [&]<std::size_t... I>(std::index_sequence<I...>) {
        (visit(kNames<std::remove_const_t<T>>[I], std::get<I>(members)), ...);
    }
    (std::make_index_sequence<std::tuple_size_v<decltype(members)>>());
}

template <class T>
bool same(const T& a, const T& b) {
    if constexpr (isRecord<T>) {
        const auto left = const_cast<T&>(a).ajson_members();
        const auto right = const_cast<T&>(b).ajson_members();
        return [&]<std::size_t... I>(std::index_sequence<I...>) {
            return (same(std::get<I>(left), std::get<I>(right)) && ...);
        }
        (std::make_index_sequence<std::tuple_size_v<decltype(left)>>());
    } else if constexpr (isSequence<T>) {
        return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                          [](const auto& x, const auto& y) { return same(x, y); });
    } else {
        return a == b;
    }
}

}  // namespace bench
