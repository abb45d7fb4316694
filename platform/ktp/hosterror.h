// What stops a host from coming up.
#pragma once

#include <algorithm>
#include <stdexcept>
#include <string>
#include <utility>

namespace ktp {

/// One line for the person who starts the program: place, thing, what is wrong and what would be right.
class HostError : public std::runtime_error {
public:
    /// Control characters, which keys and values of a file may hold, are shown as question marks.
    explicit HostError(std::string line) : std::runtime_error(printable(std::move(line))) {}

private:
    static std::string printable(std::string line) {
        std::replace_if(
            line.begin(), line.end(), [](unsigned char c) { return c < ' ' || c == 0x7F; }, '?');
        return line;
    }
};

}  // namespace ktp
