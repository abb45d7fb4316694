// Records that tell their own members: the one line behind every wire record.
//
//     struct s_SwitchMode {
//         int enable = 0;
//         AJSON(enable)
//     };
//
// The text inside the brackets is the record's field-list literal: keys equal member names, the n-th name is
// the n-th member. From it a table is made on first use, which drives both the reader and the writer.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

/// Makes the enclosing structure a record. Members are 32-bit integers and floats, bools, strings, records
/// and vectors or lists of these.
#define AJSON(...)                                                       \
    static constexpr const char* ajson_fields() { return #__VA_ARGS__; } \
    auto ajson_members() { return std::tie(__VA_ARGS__); }

namespace ajson::detail {

struct string_ref {
    const char* str;
    std::uint64_t len;
};

/// The names of a field-list literal, which must outlive the result. Separated by commas and white space;
/// empty items are dropped.
std::vector<string_ref> split_fields(const char* literal);

enum class value_kind : std::uint8_t { integer, real, boolean, text, record, sequence };

struct record_table;
struct sequence_table;

/// What a member's type means to the reader and the writer.
struct value_type {
    value_kind kind;
    const record_table* record = nullptr;
    const sequence_table* sequence = nullptr;
};

/// A vector or list, seen without its element type.
struct sequence_table {
    value_type element;
    /// Appends a default-constructed element and gives its address.
    void* (*append)(void* sequence);
    bool (*empty)(const void* sequence);
    void (*each)(const void* sequence, void* context, void (*visit)(void* context, const void* element));
};

struct member {
    std::size_t offset;
    value_type type;
};

struct field {
    string_ref name;
    const char* key;            ///< the key as it is written, with what stands before it: `{"a":` or `,"b":`
    std::uint32_t quoted_size;  ///< length of `"a":`, which starts at key + 1
    std::uint32_t offset;
    value_type type;
};

/// Everything about one record type. Built once, then read by all threads; only the guesses change.
struct record_table {
    record_table(const char* literal, const member* members, std::size_t count);

    std::vector<field> fields;
    /// Most bytes that the keys, the brackets and the scalars other than strings take when written.
    std::size_t flat_size;
    /// guesses[0] is the field that last came first, guesses[i + 1] the one that last came after field i. A
    /// guess is only ever compared with the text, so threads may overwrite each other's.
    std::unique_ptr<std::atomic<std::uint16_t>[]> guesses;

private:
    std::string keys_;
};

template <class T, class = void>
struct is_record : std::false_type {};
template <class T>
struct is_record<T, std::void_t<decltype(T::ajson_fields())>> : std::true_type {};

template <class T>
struct is_sequence : std::false_type {};
template <class T>
struct is_sequence<std::vector<T>> : std::true_type {};
template <class T>
struct is_sequence<std::list<T>> : std::true_type {};

template <class T>
const record_table& table_of();
template <class T>
const sequence_table& sequence_of();

template <class T>
value_type type_of() {
    if constexpr (std::is_same_v<T, bool>) {
        return {value_kind::boolean};
    } else if constexpr (std::is_same_v<T, std::int32_t>) {
        return {value_kind::integer};
    } else if constexpr (std::is_same_v<T, float>) {
        return {value_kind::real};
    } else if constexpr (std::is_same_v<T, std::string>) {
        return {value_kind::text};
    } else if constexpr (is_sequence<T>::value) {
        return {value_kind::sequence, nullptr, &sequence_of<T>()};
    } else {
        static_assert(is_record<T>::value, "a record's member must itself be a type that JSON can hold");
        return {value_kind::record, &table_of<T>()};
    }
}

template <class T>
const sequence_table& sequence_of() {
    static_assert(!std::is_same_v<T, std::vector<bool>>, "its elements have no address");
    using element = typename T::value_type;
    static const sequence_table table{
        type_of<element>(), [](void* sequence) -> void* { return &static_cast<T*>(sequence)->emplace_back(); },
        [](const void* sequence) { return static_cast<const T*>(sequence)->empty(); },
        [](const void* sequence, void* context, void (*visit)(void*, const void*)) {
            for (const element& each : *static_cast<const T*>(sequence)) {
                visit(context, &each);
            }
        }};
    return table;
}

template <class T>
const record_table& table_of() {
    static const record_table table = [] {
        T probe{};
        const auto offset = [&probe](const auto& each) {
            return static_cast<std::size_t>(reinterpret_cast<const char*>(&each) -
                                            reinterpret_cast<const char*>(&probe));
        };
        return std::apply(
            [&offset](auto&... each) {
                const member members[] = {{offset(each), type_of<std::remove_reference_t<decltype(each)>>()}...};
                return record_table(T::ajson_fields(), members, sizeof...(each));
            },
            probe.ajson_members());
    }();
    return table;
}

}  // namespace ajson::detail
