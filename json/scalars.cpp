#include "json/scalars.h"

#include <strings.h>

#include <cstdlib>
#include <string>

namespace ajson::detail {

namespace {

bool is_true(const token& value) { return value.length == 4 && strncasecmp(value.text, "true", 4) == 0; }

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

}  // namespace

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

}  // namespace ajson::detail
