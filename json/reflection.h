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
#include <cstring>
#include <list>
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
    const void* table = nullptr;  ///< of a record or sequence

    const record_table& record() const { return *static_cast<const record_table*>(table); }
    const sequence_table& sequence() const { return *static_cast<const sequence_table*>(table); }
};

/// A vector or list, seen without its element type.
struct sequence_table {
    value_type element;
    /// Appends a default-constructed element and gives its address.
    void* (*append)(void* sequence);
    std::size_t (*size)(const void* sequence);
    void (*each)(const void* sequence, void* context, void (*visit)(void* context, const void* element));
};

struct member {
    std::size_t offset;
    value_type type;
};

/// Keys are copied in words of this size, the last one past the key's end.
inline constexpr std::size_t kKeyWord = 16;

/// So much of a key its two words cover.
inline constexpr std::size_t kKeyStart = 16;

/// A member with its key `"name":` ready to be compared in words. Fills a cache line.
struct alignas(64) field {
    void set(const char* key_text, std::size_t length, const member& value);
    string_ref name() const { return {key + 1, key_size - std::strlen("\"\":")}; }

    std::uint64_t first_word;
    std::uint64_t last_word;  ///< where the key, or its start, ends
    std::uint64_t mask;       ///< the bytes of both words that belong to the key
    const char* key;          ///< what stands before it when written, "{" or ",", is in front of it
    std::uint16_t key_size;
    std::uint16_t reach;  ///< where the last word ends, but not before the first one does
    std::uint32_t offset;
    value_type type;
    /// The field that last came after this one. Only ever compared with the text, so threads may overwrite each
    /// other's.
    mutable std::atomic<const field*> next;
};

/// Everything about one record type. Built once, then read by all threads; only the guesses change.
struct record_table {
    record_table(const char* literal, const member* members, std::size_t count);

    std::vector<field> fields;
    mutable std::atomic<const field*> first;  ///< the field that last came first, a guess like `next`
    /// Most bytes that the keys, the brackets, the integers and the bools take when written, those of records inside
    /// included, and a word more.
    std::size_t flat_size = kKeyWord;

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
        return {value_kind::sequence, &sequence_of<T>()};
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
        [](const void* sequence) { return static_cast<const T*>(sequence)->size(); },
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
