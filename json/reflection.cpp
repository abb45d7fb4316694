#include "json/reflection.h"

#include <algorithm>
#include <cstring>

#include "json/scan.h"

namespace ajson::detail {

namespace {

constexpr const char* kSeparators = ",\t\n\f\r ";

/// Most bytes that a member takes when written; strings and containers reserve for themselves.
std::size_t flat_size_of(const value_type& type) {
    switch (type.kind) {
        case value_kind::record:
            return type.record().flat_size;
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

void field::set(const char* key_text, std::size_t length, const member& value) {
    key = key_text;
    key_size = static_cast<std::uint16_t>(length);
    reach = static_cast<std::uint16_t>(std::clamp<std::size_t>(length, sizeof first_word, kKeyStart));
    first_word = load8(key);
    last_word = load8(key + reach - sizeof last_word);
    mask = ~std::uint64_t{0} >> (length < 8 ? 64 - 8 * length : 0);
    offset = static_cast<std::uint32_t>(value.offset);
    type = value.type;
}

record_table::record_table(const char* literal, const member* members, std::size_t count) : fields(count) {
    const std::vector<string_ref> names = split_fields(literal);
    for (std::size_t i = 0; i < count; ++i) {
        keys_.append(i == 0 ? "{\"" : ",\"").append(names[i].str, names[i].len).append("\":");
    }
    keys_.append(kKeyWord, '\0');
    const char* key = keys_.data();
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t written = names[i].len + std::strlen("{\"\":");
        fields[i].set(key + 1, written - 1, members[i]);
        fields[i].next = &fields[(i + 1) % count];
        key += written;
        flat_size += written + flat_size_of(members[i].type);
    }
    first = fields.data();
}

}  // namespace ajson::detail
