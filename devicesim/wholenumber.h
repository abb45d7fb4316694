// Numbers in texts from outside.
#pragma once

#include <charconv>
#include <optional>
#include <string>
#include <system_error>

namespace devicesim {

/// None unless the text is that number and nothing else.
template <class Number>
std::optional<Number> wholeNumber(const std::string& text, int base = 10) {
    Number number{};
    const char* const end = text.data() + text.size();
    const auto [behind, error] = std::from_chars(text.data(), end, number, base);
    return error == std::errc() && behind == end ? std::optional(number) : std::nullopt;
}

}  // namespace devicesim
