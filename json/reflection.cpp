#include "json/reflection.h"

#include <cstring>

namespace ajson::detail {

namespace {

constexpr const char* kSeparators = ",\t\n\f\r ";

/// Most bytes that a member takes when written; strings and containers reserve for themselves.
std::size_t flat_size_of(value_kind kind) {
    switch (kind) {
        case value_kind::integer:
            return sizeof("-2147483648");
        case value_kind::boolean:
            return 1;
        default:
            return 0;
    }
}

}  // namespace

std::vector<string_ref> split_fields(const char* literal) {
    std::vector<string_ref> names;
    for (const char* at = literal + std::strspn(literal, kSeparators); *at != '\0';) {
        const std::size_t length = std::strcspn(at, kSeparators);
        names.push_back({at, length});
        at += length;
        at += std::strspn(at, kSeparators);
    }
    return names;
}

record_table::record_table(const char* literal, const member* members, std::size_t count)
    : flat_size(2), guesses(std::make_unique<std::atomic<std::uint16_t>[]>(count + 1)) {
    const std::vector<string_ref> names = split_fields(literal);
    keys_.reserve(std::strlen(literal) + names.size() * sizeof(",\"\":"));  // never moves: fields point into it
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t start = keys_.size();
        keys_.append(i == 0 ? "{\"" : ",\"").append(names[i].str, names[i].len).append("\":");
        const auto length = static_cast<std::uint32_t>(keys_.size() - start);
        fields.push_back({names[i], keys_.data() + start, length - 1, static_cast<std::uint32_t>(members[i].offset),
                          members[i].type});
        flat_size += length + flat_size_of(members[i].type.kind);
        guesses[i].store(static_cast<std::uint16_t>(i), std::memory_order_relaxed);
    }
    guesses[count].store(0, std::memory_order_relaxed);
}

}  // namespace ajson::detail
