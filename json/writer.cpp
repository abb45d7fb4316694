#include "json/writer.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "json/scan.h"

namespace ajson {

namespace {

constexpr char kTwoDigits[] =
    "0001020304050607080910111213141516171819202122232425262728293031323334353637383940414243444546474849"
    "5051525354555657585960616263646566676869707172737475767778798081828384858687888990919293949596979899";

/// The two digits of a number below 100, as a word's lowest bytes.
std::uint32_t two_digits(std::uint32_t value) {
    std::uint16_t pair;
    std::memcpy(&pair, kTwoDigits + value * 2, sizeof pair);
    return pair;
}

/// Writes four bytes at least.
char* write_magnitude(char* out, std::uint32_t value) {
    if (value < 10) {
        *out = static_cast<char>('0' + value);
        return out + 1;
    }
    if (value < 10000) {  // no branch on the length: zeros in front are shifted out
        const std::uint32_t zeros = static_cast<std::uint32_t>(value < 1000) + (value < 100);
        const std::uint32_t digits = (two_digits(value / 100) | two_digits(value % 100) << 16) >> (zeros * 8);
        std::memcpy(out, &digits, sizeof digits);
        return out + 4 - zeros;
    }
    char digits[10];
    char* first = digits + sizeof digits;
    while (value >= 100) {
        first -= 2;
        std::memcpy(first, kTwoDigits + value % 100 * 2, 2);
        value /= 100;
    }
    if (value >= 10) {
        first -= 2;
        std::memcpy(first, kTwoDigits + value * 2, 2);
    } else {
        *--first = static_cast<char>('0' + value);
    }
    const auto count = static_cast<std::size_t>(digits + sizeof digits - first);
    std::memcpy(out, first, count);
    return out + count;
}

// Decodes UTF-8 one byte at a time: a class for every byte, then the next state for state and class.
// Copyright (c) 2008-2009 Bjoern Hoehrmann <bjoern@hoehrmann.de>
// See http://bjoern.hoehrmann.de/utf-8/decoder/dfa/ for details.
constexpr std::uint32_t kUtf8Accept = 0;
constexpr std::uint32_t kUtf8Reject = 12;

constexpr std::uint8_t kUtf8[] = {
    // clang-format off
    0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,
    0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,
    0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,
    0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,
    1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,9,9,9,9,9,9,9,9,9,9,9,9,9,9,9,9,
    7,7,7,7,7,7,7,7,7,7,7,7,7,7,7,7,7,7,7,7,7,7,7,7,7,7,7,7,7,7,7,7,
    8,8,2,2,2,2,2,2,2,2,2,2,2,2,2,2,2,2,2,2,2,2,2,2,2,2,2,2,2,2,2,2,
    10,3,3,3,3,3,3,3,3,3,3,3,3,4,3,3,11,6,6,6,5,8,8,8,8,8,8,8,8,8,8,8,

    0,12,24,36,60,96,84,12,12,12,48,72,12,12,12,12,12,12,12,12,12,12,12,12,
    12,0,12,12,12,12,12,0,12,0,12,12,12,24,12,12,12,12,12,24,12,24,12,12,
    12,12,12,12,12,12,12,24,12,12,12,12,12,24,12,12,12,12,12,12,12,24,12,12,
    12,12,12,12,12,12,12,36,12,36,12,12,12,36,12,12,12,12,12,36,12,36,12,12,
    12,36,12,12,12,12,12,12,12,12,12,12,
    // clang-format on
};

std::uint32_t decode_utf8(std::uint32_t& state, std::uint32_t& code, std::uint8_t byte) {
    const std::uint32_t type = kUtf8[byte];
    code = state != kUtf8Accept ? (byte & 0x3Fu) | (code << 6) : (0xFFu >> type) & byte;
    state = kUtf8[256 + state + type];
    return state;
}

char* write_group(char* out, std::uint32_t code) {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    *out++ = '\\';
    *out++ = 'u';
    for (int shift = 12; shift >= 0; shift -= 4) {
        *out++ = kDigits[code >> shift & 0xF];
    }
    return out;
}

/// Writes a character that doesn't stand for itself.
char* write_code_point(char* out, std::uint32_t code) {
    static constexpr char kBytes[] = "\b\t\n\f\r\"\\";
    static constexpr char kNames[] = "btnfr\"\\";
    if (const char* found = code < 0x80 ? std::strchr(kBytes, static_cast<char>(code)) : nullptr; found != nullptr) {
        *out++ = '\\';
        *out++ = kNames[found - kBytes];
        return out;
    }
    if (code > 0xFFFF) {
        out = write_group(out, code >> 16);
    }
    return write_group(out, code & 0xFFFF);
}

/// Whether eight bytes stand for themselves when written.
bool is_plain(std::uint64_t word) {
    constexpr std::uint64_t kHigh = detail::every_byte(0x80);
    // A byte of 127 is the only one below 128 that carries into the highest bit when 1 is added.
    return ((detail::special_bytes(word) | word | (word + detail::every_byte(1))) & kHigh) == 0;
}

constexpr std::size_t kMostBytesOfOne = 6;  // \uXXXX; longer sequences take less for each of their bytes

}  // namespace

char* lite_write::write_int(char* out, std::int32_t value) {
    auto magnitude = static_cast<std::uint32_t>(value);
    if (value < 0) {
        *out++ = '-';
        magnitude = 0 - magnitude;
    }
    return write_magnitude(out, magnitude);
}

char* lite_write::write_real(char* out, float value) {
    const double wide = value;
    const double magnitude = std::fabs(wide);
    // Between these bounds the fraction has at most 40 binary digits, so that its decimal ones come out exactly.
    if (magnitude != 0 && !(magnitude >= 1e-4 && magnitude < 0x1p32)) {
        return out + std::snprintf(out, kRealSize, "%.62g", wide);
    }
    if (std::signbit(wide)) {
        *out++ = '-';
    }
    const auto whole = static_cast<std::uint32_t>(magnitude);
    out = write_magnitude(out, whole);
    const double fraction = magnitude - whole;
    if (fraction == 0) {
        return out;
    }
    *out++ = '.';
    constexpr int kFractionBits = 40;
    auto bits = static_cast<std::uint64_t>(std::ldexp(fraction, kFractionBits));
    while (bits != 0) {
        bits *= 10;
        *out++ = static_cast<char>('0' + (bits >> kFractionBits));
        bits &= (std::uint64_t{1} << kFractionBits) - 1;
    }
    return out;
}

void lite_write::write_str(ajson_string_stream& out, const char* text, std::size_t length) {
    constexpr std::size_t kChunk = 512;  // of input, so that the worst case isn't reserved for a long text
    const char* const end = text + length;
    std::uint32_t state = kUtf8Accept;
    std::uint32_t code = 0;
    char* to = out.reserve(2);
    *to++ = '"';
    while (text != end) {
        out.commit(to);
        const std::size_t chunk = std::min(kChunk, static_cast<std::size_t>(end - text));
        to = out.reserve(chunk * kMostBytesOfOne + 1);
        for (const char* const chunk_end = text + chunk; text != chunk_end;) {
            if (state == kUtf8Accept && chunk_end - text >= 8) {
                if (const std::uint64_t word = detail::load8(text); is_plain(word)) {
                    std::memcpy(to, &word, sizeof word);
                    to += sizeof word;
                    text += sizeof word;
                    continue;
                }
            }
            if (*text == '\0') {
                text = end;
                break;
            }
            if (state == kUtf8Accept && *text >= 32 && *text <= 126 && !detail::is_special(*text)) {
                *to++ = *text++;
                continue;
            }
            switch (decode_utf8(state, code, static_cast<std::uint8_t>(*text++))) {
                case kUtf8Accept:
                    to = write_code_point(to, code);
                    break;
                case kUtf8Reject:
                    state = kUtf8Accept;
                    break;
                default:
                    break;
            }
        }
    }
    *to++ = '"';
    out.commit(to);
}

namespace detail {

namespace {

/// Copies whole words, the last one past the key's end.
inline char* write_key(char* out, const field& member) {
    const char* const from = member.key - 1;
    const std::size_t size = member.key_size + 1u;
    std::memcpy(out, from, kKeyWord);
    for (std::size_t done = kKeyWord; done < size; done += kKeyWord) {
        std::memcpy(out + done, from + done, kKeyWord);
    }
    return out + size;
}

/// Writes a record behind `to`, which has room for its flat part, and gives the end. Where the stream must be asked
/// for more, room for `rest` bytes of the records around this one stays.
char* write_record(ajson_string_stream& out, char* to, const record_table& table, const char* object,
                   std::size_t rest) {
    for (const field& member : table.fields) {
        to = write_key(to, member);
        const char* const value = object + member.offset;
        switch (member.type.kind) {
            case value_kind::integer:
                to = lite_write::write_int(to, *reinterpret_cast<const std::int32_t*>(value));
                break;
            case value_kind::boolean:
                *to++ = *reinterpret_cast<const bool*>(value) ? '1' : '0';
                break;
            case value_kind::record:
                to = write_record(out, to, member.type.record(), value, rest + table.flat_size);
                break;
            default:
                out.commit(to);
                write_value(out, member.type, value);
                to = out.reserve(table.flat_size + rest);
        }
    }
    *to++ = '}';
    return to;
}

void write_sequence(ajson_string_stream& out, const sequence_table& table, const void* sequence) {
    const std::size_t size = table.size(sequence);
    if (size == 0) {
        return out.write("[]", 2);
    }
    if (table.element.kind == value_kind::record) {
        out.reserve(size * table.element.record().flat_size);  // once for all elements
    }
    char lead = '[';
    struct context_type {
        ajson_string_stream& out;
        const value_type& element;
        char& lead;
    } context{out, table.element, lead};
    table.each(sequence, &context, [](void* opaque, const void* element) {
        auto& to = *static_cast<context_type*>(opaque);
        to.out.put(to.lead);
        to.lead = ',';
        write_value(to.out, to.element, element);
    });
    out.put(']');
}

}  // namespace

void write_value(ajson_string_stream& out, const value_type& type, const void* value) {
    switch (type.kind) {
        case value_kind::record:
            return out.commit(write_record(out, out.reserve(type.record().flat_size), type.record(),
                                           static_cast<const char*>(value), 0));
        case value_kind::sequence:
            return write_sequence(out, type.sequence(), value);
        case value_kind::text: {
            const auto& text = *static_cast<const std::string*>(value);
            return lite_write::write_str(out, text.data(), text.size());
        }
        case value_kind::integer:
            return out.commit(lite_write::write_int(out.reserve(11), *static_cast<const std::int32_t*>(value)));
        case value_kind::real:
            return out.commit(
                lite_write::write_real(out.reserve(lite_write::kRealSize), *static_cast<const float*>(value)));
        case value_kind::boolean:
            return out.put(*static_cast<const bool*>(value) ? '1' : '0');
    }
}

}  // namespace detail
}  // namespace ajson
