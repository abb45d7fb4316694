// Searches that go eight bytes at a time. All stop at the end of the buffer at the latest.
#pragma once

#include <cstdint>
#include <cstring>

namespace ajson::detail {

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "the first byte of a text is taken for the lowest of a word");

inline std::uint64_t load8(const char* at) {
    std::uint64_t word;
    std::memcpy(&word, at, sizeof word);
    return word;
}

inline constexpr std::uint64_t every_byte(unsigned char byte) { return 0x0101010101010101u * byte; }

/// The place of the first byte that a mask of highest bits marks.
inline int first_marked(std::uint64_t mask) { return __builtin_ctzll(mask) / 8; }

/// Not zero when a byte of `word` is zero; the lowest bit set marks the first such byte.
inline std::uint64_t zero_bytes(std::uint64_t word) { return (word - every_byte(1)) & ~word & every_byte(0x80); }

/// Not zero when a byte of `word` is a quote, a backslash or below a blank.
inline std::uint64_t special_bytes(std::uint64_t word) {
    return zero_bytes(word ^ every_byte('"')) | zero_bytes(word ^ every_byte('\\')) |
           ((word - every_byte(0x20)) & ~word & every_byte(0x80));
}

inline bool is_special(char c) { return c == '"' || c == '\\' || static_cast<unsigned char>(c) < 0x20; }

/// The first quote, backslash or control character from `at` on.
inline const char* find_special(const char* at, const char* end) {
    while (end - at >= 8) {
        if (const std::uint64_t found = special_bytes(load8(at)); found != 0) {
            return at + first_marked(found);
        }
        at += 8;
    }
    while (at != end && !is_special(*at)) {
        ++at;
    }
    return at;
}

/// Whether it may be white space.
constexpr bool is_blank(char c) { return static_cast<unsigned char>(c) <= ' '; }

/// Made for indentation: a line feed and many blanks.
[[gnu::noinline]] inline const char* skip_indentation(const char* at, const char* end) {
    while (*at == ' ' || *at == '\n' || *at == '\r' || *at == '\t') {
        ++at;
        while (end - at >= 8) {
            const std::uint64_t others = load8(at) ^ every_byte(' ');
            if (others != 0) {
                at += first_marked(others);
                break;
            }
            at += 8;
        }
    }
    return at;
}

/// The first character from `at` on that is no white space. Compact texts have none.
inline const char* skip_blanks(const char* at, const char* end) {
    return is_blank(*at) ? skip_indentation(at, end) : at;
}

}  // namespace ajson::detail
