// How long to wait between attempts.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <random>

namespace lcdcomm {

/// Waits that double from `first` to `longest`, each shortened by up to a half at random, so that panels that lost
/// the same device don't come back at the same moment. One thread.
class Backoff {
public:
    using Milliseconds = std::chrono::milliseconds;

    Backoff(Milliseconds first, Milliseconds longest) : first_(first), longest_(std::max(first, longest)) {}

    /// The wait after an attempt whose result lasted for `lived`. What outlived the wait that would be next was worth
    /// it: the waits begin from the first again.
    Milliseconds next(Milliseconds lived) {
        const Milliseconds whole = lived > next_ ? first_ : next_;
        next_ = std::min(2 * whole, longest_);
        return Milliseconds(std::uniform_int_distribution<std::int64_t>(whole.count() / 2, whole.count())(random_));
    }

private:
    const Milliseconds first_;
    const Milliseconds longest_;
    Milliseconds next_ = first_;
    std::minstd_rand random_{std::random_device{}()};
};

}  // namespace lcdcomm
