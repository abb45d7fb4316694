// Keeps a log line from flooding.
#pragma once

#include <atomic>
#include <chrono>

namespace lcdcomm {

/// Any thread.
class OncePerSecond {
public:
    /// True for the first caller of a second.
    bool due() {
        const auto now = Clock::now();
        auto last = last_.load(std::memory_order_relaxed);
        return now - last >= std::chrono::seconds(1) && last_.compare_exchange_strong(last, now);
    }

private:
    using Clock = std::chrono::steady_clock;

    std::atomic<Clock::time_point> last_{Clock::time_point{} - std::chrono::seconds(1)};
};

}  // namespace lcdcomm
