#include "json/recordreader.h"

#include <cstring>

#include "json/scalars.h"
#include "json/scan.h"

// The reader knows two ways through a text. The fast one compares the text with the key that is expected next
// and parses the value where the cursor stands. Wherever something else turns up, it steps back and the token
// path decides, which alone knows all that is tolerated and raises all errors. It is kept out of line, so that the
// fast one has the registers.

namespace ajson::detail {

namespace {

const char* read_record(reader& in, const char* at, const record_table& table, char* object);

constexpr unsigned digit_of(char c) { return static_cast<unsigned>(c) - '0'; }

// ---------------------------------------------------------------------------------- scalars

struct plain_number {
    const char* end;  ///< null when the token path must decide
    std::uint32_t magnitude;
    unsigned next;  ///< the character at the end, as `digit_of` gives it
};

/// The digits at `at`, where they are an integer.
inline plain_number digits_at(const char* at) {
    unsigned digit = digit_of(*at);
    if (digit > 9) [[unlikely]] {
        return {nullptr, 0, digit};
    }
    std::uint32_t magnitude = digit;  // what overflows is cut off in the end
    while ((digit = digit_of(*++at)) <= 9) {
        magnitude = magnitude * 10 + digit;
    }
    const bool goes_on = digit != digit_of(',') && (digit == digit_of('.') || (digit | 0x20) == digit_of('e'));
    return {goes_on ? nullptr : at, magnitude, digit};
}

/// The end of a plain integer at `at`, or null when the token path must decide.
const char* plain_integer(const char* at, std::int32_t& out) {
    const bool negative = *at == '-';
    const plain_number number = digits_at(at + negative);
    if (number.end != nullptr) {
        out = cut_to_32(number.magnitude, negative);
    }
    return number.end;
}

/// The end of a quoted string without escapes at `at`, or null.
[[gnu::noinline]] const char* plain_text(const char* at, const char* end, std::string& out) {
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
inline bool is_key(const char* at, const char* end, const field& expected) {
    if (end - at < expected.reach) [[unlikely]] {
        return false;
    }
    const std::uint64_t differences = (load8(at) ^ expected.first_word) |
                                      (load8(at + expected.reach - sizeof expected.last_word) ^ expected.last_word);
    if ((differences & expected.mask) != 0) [[unlikely]] {
        return false;
    }
    const std::size_t size = expected.key_size;
    return size <= kKeyStart || (static_cast<std::size_t>(end - at) >= size &&
                                 std::memcmp(at + kKeyStart, expected.key + kKeyStart, size - kKeyStart) == 0);
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

/// Passes the opening brace at `at` and gives the place of the first key. Null when the record is empty: its closing
/// brace is then left where it stands, behind the cursor, and the reader above takes it for its own.
[[gnu::noinline]] const char* enter_record(reader& in, const char* at) {
    const char* key = skip_blanks(at, in.buffer_end());
    if (*key == '{') {
        key = skip_blanks(key + 1, in.buffer_end());
        if (key[0] == '"' && key[1] != '}') {
            return key;
        }
    }
    in.set_cursor(at);
    in.next();
    if (!in.current().starts_with('{')) {
        in.error("read object must start with {!");
    }
    in.next();
    const bool empty = in.current().starts_with('}');
    in.unread();
    return empty ? nullptr : in.cursor();
}

/// Passes the key at the cursor, which isn't the expected one, or not at once. Its field, or null after its value
/// was passed, too.
[[gnu::noinline]] const field* other_key(reader& in, const record_table& table, std::atomic<const field*>& guess) {
    const char* const end = in.buffer_end();
    const field* member = guess.load(std::memory_order_relaxed);
    if (const char* const key = skip_blanks(in.cursor(), end); is_key(key, end, *member)) {
        const char* const value = key + member->key_size;
        in.set_cursor(skip_blanks(value + (*value == ' '), end));
        return member;
    }
    member = key_from_tokens(in, table);
    if (member != nullptr) {
        guess.store(member, std::memory_order_relaxed);
    } else {
        skip(in);
    }
    return member;
}

/// Passes what stands behind a member and gives the place of the next key. Null where it was the record's end: the
/// cursor is then behind it.
[[gnu::noinline]] const char* next_key(reader& in, const char* at) {
    at = skip_blanks(at, in.buffer_end());
    if (*at == ',') {
        return at + 1;
    }
    if (*at == '}') {
        in.set_cursor(at + 1);
        return nullptr;
    }
    in.set_cursor(at);
    in.next();
    if (in.current().starts_with('}')) {
        return nullptr;
    }
    if (!in.current().starts_with(',')) {
        in.error("invalid json document!");
    }
    return in.cursor();
}

/// Reads the value at `at` and gives its end.
[[gnu::noinline]] const char* read_member(reader& in, const char* at, const value_type& type, char* target) {
    at = skip_blanks(at, in.buffer_end());
    const char* behind = nullptr;
    if (type.kind == value_kind::integer) {
        behind = plain_integer(at, *reinterpret_cast<std::int32_t*>(target));
    } else if (type.kind == value_kind::text) {
        behind = plain_text(at, in.buffer_end(), *reinterpret_cast<std::string*>(target));
    }
    if (behind == nullptr) {
        in.set_cursor(at);
        read_value(in, type, target);
        behind = in.cursor();
    }
    return behind;
}

/// Reads the record at `at` and gives its end.
const char* read_record(reader& in, const char* at, const record_table& table, char* object) {
    const char* const end = in.buffer_end();
    if (at[0] == '{' && at[1] == '"' && at[2] != '}') [[likely]] {
        ++at;
    } else if (at = enter_record(in, at); at == nullptr) {
        return in.cursor();
    }
    std::atomic<const field*>* guess = &table.first;
    for (;;) {
        const field* member = guess->load(std::memory_order_relaxed);
        if (is_key(at, end, *member)) [[likely]] {
            at += member->key_size;
        } else {
            in.set_cursor(at);
            member = other_key(in, table, *guess);
            at = in.cursor();
        }
        if (member != nullptr) [[likely]] {
            guess = &member->next;
            char* const target = object + member->offset;
            if (member->type.kind == value_kind::record) {
                at = read_record(in, at, member->type.record(), target);
            } else if (const plain_number number =
                           member->type.kind == value_kind::integer ? digits_at(at) : plain_number{};
                       number.end == nullptr) {
                at = read_member(in, at, member->type, target);
            } else {  // most members
                *reinterpret_cast<std::int32_t*>(target) = static_cast<std::int32_t>(number.magnitude);
                at = number.end;
                if (number.next == digit_of(',')) [[likely]] {
                    ++at;
                    continue;
                }
            }
        }
        if (*at == ',') {
            ++at;
        } else if (*at == '}') {
            return at + 1;
        } else if (at = next_key(in, at); at == nullptr) {
            return in.cursor();
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
