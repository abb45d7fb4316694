#include "devicesim/tokens.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <random>

namespace devicesim {

std::string randomHex(int words) {
    std::random_device random;
    std::string text;
    for (int i = 0; i < words; ++i) {
        fmt::format_to(std::back_inserter(text), "{:08x}", random());
    }
    return text;
}

std::string Tokens::open() {
    const auto now = Clock::now();
    std::erase_if(tokens_, [now](const auto& entry) { return entry.second <= now; });
    if (tokens_.size() >= limit_) {
        tokens_.erase(std::min_element(tokens_.begin(), tokens_.end(),
                                       [](const auto& a, const auto& b) { return a.second < b.second; }));
    }
    ++logins_;
    return tokens_.emplace(randomHex(4), now + lifetime_).first->first;
}

bool Tokens::valid(const std::string& token) const {
    const auto found = tokens_.find(token);
    return found != tokens_.end() && Clock::now() < found->second;
}

}  // namespace devicesim
