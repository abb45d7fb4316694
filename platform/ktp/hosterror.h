// What stops a host from coming up.
#pragma once

#include <stdexcept>

namespace ktp {

/// One line for the person who starts the program: place, thing, what is wrong and what would be right.
class HostError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}  // namespace ktp
