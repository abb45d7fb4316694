#include "json/recordreader.h"

#include <strings.h>
#include <cstdlib>
#include <cstring>

#include "json/scan.h"

// The reader knows two ways through a text. The fast one compares the text with the key that is expected next
// and parses the value where the cursor stands. Wherever something else turns up, it steps back and the token
// path decides, which alone knows all that is tolerated and raises all errors. It is kept out of line, so that the
// fast one has the registers.

namespace ajson::detail {

namespace {

const char* read_record(reader& in, const char* at, const record_table& table, char* object);

constexpr unsigned digit_of(char c) { return static_cast<unsigned>(c) - '0'; }

// ---------------------------------------------------------------------- scalars from a token

bool is_true(const token& value) { return value.length == 4 && strncasecmp(value.text, "true", 4) == 0; }

std::int32_t cut_to_32(std::uint64_t magnitude, bool negative) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(negative ? 0 - magnitude : magnitude));
}

std::int32_t integer_of_double(double magnitude, bool negative) {
    constexpr double kLimit = 9223372036854775808.0;
    return magnitude < kLimit ? cut_to_32(static_cast<std::uint64_t>(magnitude), negative) : 0;
}

void integer_from_token(const reader& in, std::int32_t& out) {
    const token& value = in.current();
    switch (value.type) {
        case token_uint:
        case token_int:
            out = cut_to_32(value.value.u64, value.negative);
            return;
        case token_double:
            out = integer_of_double(value.value.d64, value.negative);
            return;
        case token_string:
            out = is_true(value) ? 1 : static_cast<std::int32_t>(std::strtoll(value.text, nullptr, 10));
            return;
        default:
            in.error("not a valid signed integral like number.");
    }
}

void real_from_token(const reader& in, float& out) {
    const token& value = in.current();
    switch (value.type) {
        case token_double:
            out = static_cast<float>(value.negative ? -value.value.d64 : value.value.d64);
            return;
        case token_uint:
        case token_int:
            out = static_cast<float>(value.value.u64);
            out = value.negative ? -out : out;
            return;
        case token_string:
            out = static_cast<float>(std::strtold(value.text, nullptr));
            return;
        default:
            in.error("not a valid float point number.");
    }
}

void boolean_from_token(const reader& in, bool& out) {
    const token& value = in.current();
    switch (value.type) {
        case token_uint:
        case token_int:
            out = value.value.u64 != 0;
            return;
        case token_double:
            out = value.value.d64 != 0.0;
            return;
        case token_string:
            out = is_true(value);
            return;
        default:
            in.error("not a valid bool.");
    }
}

void text_from_token(const reader& in, std::string& out) {
    const token& value = in.current();
    if (value.type != token_string || !escape_string(out, value.text, value.length)) {
        in.error("not a valid string.");
    }
}

void scalar_from_token(reader& in, value_kind kind, void* member) {
    in.next();
    switch (kind) {
        case value_kind::integer:
            return integer_from_token(in, *static_cast<std::int32_t*>(member));
        case value_kind::real:
            return real_from_token(in, *static_cast<float*>(member));
        case value_kind::boolean:
            return boolean_from_token(in, *static_cast<bool*>(member));
        default:
            return text_from_token(in, *static_cast<std::string*>(member));
    }
}

// --------------------------------------------------------------------- scalars from the cursor

/// The end of a plain integer at `at`, or null when the token path must decide.
inline const char* plain_integer(const char* at, std::int32_t& out) {
    unsigned digit = digit_of(*at);
    bool negative = false;
    if (digit > 9) {
        if (*at != '-' || (digit = digit_of(*++at)) > 9) {
            return nullptr;
        }
        negative = true;
    }
    std::uint32_t magnitude = digit;  // what overflows is cut off in the end
    while ((digit = digit_of(*++at)) <= 9) {
        magnitude = magnitude * 10 + digit;
    }
    if (*at != ',' && *at != '}' && (*at == '.' || (*at | 0x20) == 'e')) {
        return nullptr;
    }
    out = static_cast<std::int32_t>(negative ? 0 - magnitude : magnitude);
    return at;
}

/// The end of a quoted string without escapes at `at`, or null.
inline const char* plain_text(const char* at, const char* end, std::string& out) {
    if (*at != '"') {
        return nullptr;
    }
    const char* close = find_special(at + 1, end);
    while (*close != '"') {
        if (*close == '\\' || *close == '\n' || *close == '\0') {
            return nullptr;
        }
        close = find_special(close + 1, end);
    }
    out.assign(at + 1, close);
    return close + 1;
}

// ---------------------------------------------------------------------------------- records

/// Whether the text at `at` is the key of the field that is expected.
inline bool is_key(const char* at, const field& expected) {
    const std::uint64_t differences =
        (load8(at) ^ expected.first_word) | (load8(at + expected.reach - 8) ^ expected.last_word);
    return (differences & expected.mask) == 0 &&
           (expected.key_size <= 16 || std::memcmp(at + 8, expected.key + 8, expected.key_size - 16u) == 0);
}

const field* find_field(const record_table& table, const token& key) {
    for (const field& each : table.fields) {
        const string_ref name = each.name();
        if (name.len == key.length && std::memcmp(name.str, key.text, key.length) == 0) {
            return &each;
        }
    }
    return nullptr;
}

/// Reads a key and its colon by tokens. The field of that name, or null.
const field* key_from_tokens(reader& in, const record_table& table) {
    in.next();
    if (in.current().type != token_string) {
        in.error("object key must be string");
    }
    const token key = in.current();
    in.next();
    if (!in.current().is_symbol(':')) {
        in.error("invalid json document!");
    }
    return find_field(table, key);
}

/// Passes what stands between two members. False when it was the record's end.
[[gnu::cold]] bool separator_from_tokens(reader& in) {
    in.next();
    if (in.current().starts_with('}')) {
        return false;
    }
    if (!in.current().starts_with(',')) {
        in.error("invalid json document!");
    }
    return true;
}

/// Passes the opening brace. False when the record is empty: its closing brace is then left where it stands,
/// and the reader above takes it for its own.
[[gnu::cold]] bool enter_record(reader& in) {
    in.next();
    if (!in.current().starts_with('{')) {
        in.error("read object must start with {!");
    }
    in.next();
    const bool empty = in.current().starts_with('}');
    in.unread();
    return !empty;
}

/// Passes a key by tokens. The field of that name, or null after its value was passed, too.
[[gnu::cold]] const field* any_key(reader& in, const record_table& table) {
    const field* const member = key_from_tokens(in, table);
    if (member == nullptr) {
        skip(in);
    }
    return member;
}

[[gnu::cold]] const char* value_from_tokens(reader& in, const char* at, const field& member, char* object) {
    in.set_cursor(at);
    read_value(in, member.type, object + member.offset);
    return in.cursor();
}

/// Reads the value of a member at `at`, in the fast way where there is one, and gives its end.
inline const char* read_member(reader& in, const char* at, const field& member, char* object) {
    char* const target = object + member.offset;
    for (;;) {
        const char* behind = nullptr;
        switch (member.type.kind) {
            case value_kind::integer:
                behind = plain_integer(at, *reinterpret_cast<std::int32_t*>(target));
                break;
            case value_kind::record:
                return read_record(in, at, member.type.record(), target);
            case value_kind::text:
                behind = plain_text(at, in.buffer_end(), *reinterpret_cast<std::string*>(target));
                break;
            default:
                return value_from_tokens(in, at, member, object);
        }
        if (behind != nullptr) {
            return behind;
        }
        const char* const value = skip_blanks(at, in.buffer_end());
        if (value == at) {
            return value_from_tokens(in, at, member, object);
        }
        at = value;
    }
}

/// Reads the record at `at` and gives its end.
const char* read_record(reader& in, const char* start, const record_table& table, char* object) {
    const char* const end = in.buffer_end();
    const char* const safe_end = end - table.longest_reach;
    const char* at = skip_blanks(start, end);
    const bool opened = *at == '{';
    at = skip_blanks(at + opened, end);
    if (!opened || at[0] != '"' || at[1] == '}') {
        in.set_cursor(start);
        if (!enter_record(in)) {
            return in.cursor();
        }
        at = in.cursor();
    }
    std::atomic<const field*>* guess = &table.first;
    for (;;) {
        const field* member = guess->load(std::memory_order_relaxed);
        const auto comes = [&] { return (at <= safe_end || end - at >= member->reach) && is_key(at, *member); };
        if (comes() || (is_blank(*at) && (at = skip_blanks(at, end), comes()))) {  // compact texts come first
            at += member->key_size;
        } else {
            in.set_cursor(at);
            member = any_key(in, table);
            at = in.cursor();
            if (member != nullptr) {
                guess->store(member, std::memory_order_relaxed);
            }
        }
        if (member != nullptr) {
            guess = &member->next;
            at = read_member(in, at, *member, object);
        }
        if (*at == ',') {
            ++at;
            continue;
        }
        if (*at == '}') {
            return at + 1;
        }
        at = skip_blanks(at, end);
        if (*at == ',') {
            ++at;
        } else if (*at == '}') {
            return at + 1;
        } else {
            in.set_cursor(at);
            const bool more = separator_from_tokens(in);
            at = in.cursor();
            if (!more) {
                return at;
            }
        }
    }
}

// ------------------------------------------------------------------------------- containers

enum class container { elements, empty };

/// Passes the opening bracket, or a null that stands for no elements.
container enter_sequence(reader& in) {
    in.next();
    if (in.current().starts_with('[')) {
        return container::elements;
    }
    if (in.current().length >= 4 && std::memcmp(in.current().text, "null", 4) == 0) {
        return container::empty;
    }
    in.error("array must start with [.");
}

/// Passes what stands between two elements. False when it was the container's end.
bool more_elements(reader& in) {
    const char* at = skip_blanks(in.cursor(), in.buffer_end());
    if (*at == ',') {
        in.set_cursor(at + 1);
        return true;
    }
    if (*at == ']') {
        in.set_cursor(at + 1);
        return false;
    }
    in.next();
    if (in.current().is_symbol(']')) {
        return false;
    }
    if (!in.current().is_symbol(',')) {
        in.error("no valid array!");
    }
    return true;
}

/// Whether the container ends here, as it may behind its opening bracket and behind a comma.
bool at_sequence_end(reader& in) {
    const char* at = skip_blanks(in.cursor(), in.buffer_end());
    if (*at == '{') {
        in.set_cursor(at);
        return false;
    }
    in.next();  // may raise, before there is an element
    if (in.current().is_symbol(']')) {
        return true;
    }
    in.unread();
    return false;
}

container read_sequence(reader& in, const sequence_table& table, void* sequence) {
    if (enter_sequence(in) == container::empty) {
        return container::empty;
    }
    while (!at_sequence_end(in)) {
        read_value(in, table.element, table.append(sequence));
        if (!more_elements(in)) {
            break;
        }
    }
    return container::elements;
}

}  // namespace

void read_value(reader& in, const value_type& type, void* member) {
    switch (type.kind) {
        case value_kind::record:
            in.set_cursor(read_record(in, in.cursor(), type.record(), static_cast<char*>(member)));
            return;
        case value_kind::sequence:
            read_sequence(in, type.sequence(), member);
            return;
        default:
            return scalar_from_token(in, type.kind, member);
    }
}

void read_document(reader& in, const value_type& type, void* out) {
    if (type.kind == value_kind::sequence && read_sequence(in, type.sequence(), out) == container::elements) {
        return;
    }
    if (type.kind != value_kind::sequence) {
        read_value(in, type, out);
    }
    in.next();
}

}  // namespace ajson::detail
