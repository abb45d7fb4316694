// The tokens that the device has given out.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>

namespace devicesim {

/// `words` random 32-bit numbers in hexadecimal.
std::string randomHex(int words);

/// Not synchronised: belongs to the owner of the state.
class Tokens {
public:
    Tokens(std::chrono::milliseconds lifetime, std::size_t limit) : lifetime_(lifetime), limit_(limit) {}

    /// A new token, valid beside the others.
    std::string open();
    bool valid(const std::string& token) const;
    /// Makes all tokens invalid.
    void expire() { tokens_.clear(); }

    std::uint64_t logins() const { return logins_; }

private:
    using Clock = std::chrono::steady_clock;

    const std::chrono::milliseconds lifetime_;
    const std::size_t limit_;
    std::unordered_map<std::string, Clock::time_point> tokens_;  // with the end of each
    std::uint64_t logins_ = 0;
};

}  // namespace devicesim
