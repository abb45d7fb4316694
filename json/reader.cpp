#include "json/reader.h"

#include <cmath>
#include <cstring>

#include "json/scan.h"

namespace ajson {

namespace {

const char* const kEmpty = "";

bool ends_word(char c) { return std::strchr("\t\n\r ,:[]{}", c) != nullptr; }

}  // namespace

reader::reader(const char* text, std::uint64_t limit) : reader(kEmpty, kEmpty) {
    if (text == nullptr) {
        return;
    }
    std::uint64_t length = 0;
    while (length != limit && text[length] != '\0') {
        ++length;
    }
    if (limit != no_limit) {
        byte_at_limit_ = text[length];
        limited_.assign(text, length);
        text = limited_.c_str();
    }
    input_ = cursor_ = token_start_ = text;
    buffer_end_ = text + length;
}

void reader::error(const char* text) const {
    std::uint64_t line = 0;
    std::uint64_t column = 0;
    for (const char* at = input_; at != cursor_;) {
        ++at;
        const char c = at == buffer_end_ ? byte_at_limit_ : *at;
        if (c == '\n') {
            ++line;
            column = 0;
        } else if (c != '\r') {
            ++column;
        }
    }
    throw exception("error at line :" + std::to_string(line) + " col :" + std::to_string(column) + " msg:" + text);
}

void reader::next() {
    const char* at = cursor_;
    for (;;) {
        at = detail::skip_blanks(at, buffer_end_);
        if (*at != '/') {
            break;
        }
        if (at[1] != '/') {
            return block_comment(at);
        }
        at += std::strcspn(at, "\n");
    }
    token_start_ = at;
    switch (*at) {
        case '\0':
            return end_of_text(at);
        case '"':
            return quoted_string(at);
        case ',':
        case ':':
        case '[':
        case ']':
        case '{':
        case '}':
            current_ = {at, 1, token_symbol, false, {0}};
            cursor_ = at + 1;
            return;
        case '-':
            current_ = {at, 1, token_int, true, {0}};
            break;
        default:
            if (*at < '0' || *at > '9') {
                return bare_word(at);
            }
            current_ = {at, 1, token_uint, false, {static_cast<std::uint64_t>(*at - '0')}};
    }
    cursor_ = at + 1;
    parser_number();
}

void reader::end_of_text(const char* at) {
    current_ = {at == buffer_end_ ? &byte_at_limit_ : at, 1, token_end, false, {0}};
    cursor_ = at;
}

void reader::quoted_string(const char* start) {
    const char* at = start + 1;
    for (;;) {
        at = detail::find_special(at, buffer_end_);
        if (*at == '"') {
            break;
        }
        if (*at == '\0' || *at == '\n') {
            cursor_ = at;
            error("not a valid quote string!");
        }
        // A backslash takes the next character whatever it is; other control characters stand for themselves.
        at += *at == '\\' && at[1] != '\0' ? 2 : 1;
    }
    current_ = {start + 1, static_cast<std::uint64_t>(at - start - 1), token_string, false, {0}};
    cursor_ = at + 1;
}

void reader::bare_word(const char* start) {
    const char* at = start;
    while (!ends_word(*at)) {  // the NUL ends a word, too
        ++at;
    }
    cursor_ = at;
    if (*at == '\0') {
        error("not a valid string!");
    }
    current_ = {start, static_cast<std::uint64_t>(at - start), token_string, false, {0}};
}

/// `start` stands on a "/" that no second one follows. A complete block comment is an error like any other
/// character there; one that the text's end cuts off leaves the token that stood before it.
void reader::block_comment(const char* start) {
    cursor_ = start + 1;
    if (*cursor_ != '*') {
        error("not a comment!");
    }
    if (const char* close = std::strstr(start + 2, "*/"); close != nullptr) {
        cursor_ = close + 2;
        error("not a comment!");
    }
    // The token before it may have been passed without being made; make it again.
    cursor_ = input_;
    token before;
    const char* before_start = input_;
    while (detail::skip_blanks(cursor_, buffer_end_) != start) {
        if (const char* at = detail::skip_blanks(cursor_, buffer_end_); *at == '/') {
            cursor_ = at + std::strcspn(at, "\n");
            continue;
        }
        next();
        before = current_;
        before_start = token_start_;
    }
    current_ = before;
    token_start_ = before_start;
    cursor_ = start + std::strlen(start);
}

void reader::parser_number() {
    const char* at = cursor_;
    double weight = 0.1;
    for (;; ++at) {
        if (const unsigned digit = static_cast<unsigned>(*at) - '0'; digit <= 9) {
            if (current_.type != token_double) {
                current_.value.u64 = current_.value.u64 * 10 + digit;
            } else {
                current_.value.d64 = std::fma(digit, weight, current_.value.d64);
                weight *= 0.1;
            }
        } else if (*at == '.') {
            if (current_.type == token_double) {
                cursor_ = at;
                error("not a valid number!");
            }
            current_.type = token_double;
            current_.value.d64 = static_cast<double>(current_.value.u64);
        } else {
            break;
        }
    }
    if (*at == 'e' || *at == 'E') {
        at = exponent(at + 1);
    }
    cursor_ = at;
    current_.length = static_cast<std::uint64_t>(at - current_.text);
}

/// Reads what follows the "e" and gives the number's end.
const char* reader::exponent(const char* at) {
    if (current_.type != token_double) {
        current_.type = token_double;
        current_.value.d64 = static_cast<double>(current_.value.u64);
    }
    while (*at == '+') {
        ++at;
    }
    const double factor = *at == '-' ? 0.1 : 10.0;
    at += *at == '-' ? 1 : 0;
    std::uint32_t power = 0;
    for (unsigned digit; (digit = static_cast<unsigned>(*at) - '0') <= 9; ++at) {
        power = power * 10 + digit;
    }
    double& value = current_.value.d64;
    for (double before = 0; power != 0; --power) {
        before = value;
        value *= factor;
        if (value == before) {  // zero or infinity by now: more of it changes nothing
            break;
        }
    }
    return at;
}

namespace {

void skip_object(reader& in) {
    in.next();
    if (in.current().starts_with('}')) {
        return;
    }
    for (;;) {
        if (in.current().type == token_symbol) {
            in.error("invalid json document!");
        }
        in.next();
        if (!in.current().is_symbol(':')) {
            in.error("invalid json document!");
        }
        skip(in);
        in.next();
        if (in.current().starts_with('}')) {
            return;
        }
        if (!in.current().starts_with(',')) {
            in.error("invalid json document!");
        }
        in.next();
    }
}

void skip_array(reader& in) {
    in.next();
    while (!in.current().is_symbol(']')) {
        in.unread();
        skip(in);
        in.next();
        if (in.current().is_symbol(',')) {
            in.next();
        } else if (!in.current().is_symbol(']') && in.current().type != token_end) {
            in.error("no valid array!");
        }
    }
}

int hex_digit(char c) {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    const char lower = static_cast<char>(c | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

void append_utf8(std::string& out, unsigned code) {
    if (code < 0x80) {
        out.push_back(static_cast<char>(code));
        return;
    }
    if (code < 0x800) {
        out.push_back(static_cast<char>(0xC0 | code >> 6));
    } else {
        out.push_back(static_cast<char>(0xE0 | code >> 12));
        out.push_back(static_cast<char>(0x80 | (code >> 6 & 0x3F)));
    }
    out.push_back(static_cast<char>(0x80 | (code & 0x3F)));
}

}  // namespace

void skip(reader& in) {
    in.next();
    if (in.current().is_symbol('{')) {
        skip_object(in);
    } else if (in.current().is_symbol('[')) {
        skip_array(in);
    } else if (in.current().type == token_symbol) {
        in.unread();
    }
}

bool escape_string(std::string& out, const char* text, std::uint64_t length) {
    out.clear();
    out.reserve(length);
    const char* const end = text + length;
    while (text != end) {
        const auto* slash = static_cast<const char*>(std::memchr(text, '\\', static_cast<std::size_t>(end - text)));
        if (slash == nullptr) {
            out.append(text, end);
            return true;
        }
        out.append(text, slash);
        if (end - slash < 2) {
            return false;
        }
        text = slash + 2;
        if (slash[1] != 'u') {
            static constexpr char kNames[] = "\"\\/bfnrt";
            static constexpr char kBytes[] = "\"\\/\b\f\n\r\t";
            const char* name = slash[1] == '\0' ? nullptr : std::strchr(kNames, slash[1]);
            if (name == nullptr) {
                return false;
            }
            out.push_back(kBytes[name - kNames]);
            continue;
        }
        unsigned code = 0;
        for (int i = 0; i < 4; ++i, ++text) {
            const int digit = text == end ? -1 : hex_digit(*text);
            if (digit < 0) {
                return false;
            }
            code = code << 4 | static_cast<unsigned>(digit);
        }
        if (code == 0) {
            return false;
        }
        append_utf8(out, code);
    }
    return true;
}

}  // namespace ajson
