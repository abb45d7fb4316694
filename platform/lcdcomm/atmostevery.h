// Keeps what may happen at any time from happening too often.
#pragma once

#include <atomic>
#include <chrono>

namespace lcdcomm {

/// Any thread.
class AtMostEvery {
public:
    explicit AtMostEvery(std::chrono::milliseconds interval) : interval_(interval) {}

    /// True for the first caller, and for the first one when the interval has passed since the last true.
    bool due() {
        const auto now = Clock::now();
        auto last = last_.load(std::memory_order_relaxed);
        return now - last >= interval_ && last_.compare_exchange_strong(last, now);
    }

private:
    using Clock = std::chrono::steady_clock;

    const std::chrono::milliseconds interval_;
    std::atomic<Clock::time_point> last_{Clock::time_point{} - std::chrono::hours(1)};
};

/// For log lines that a fault could repeat without end.
class OncePerSecond : public AtMostEvery {
public:
    OncePerSecond() : AtMostEvery(std::chrono::seconds(1)) {}
};

}  // namespace lcdcomm
