// When the mirrors are told that reports may be missing.
#pragma once

#include <chrono>
#include <optional>

#include "platform/lcdcomm/flights.h"

namespace lcdcomm {

/// The times of the messages that mark all mirrors for a new fetch: at once where reports may be missing, but no more
/// often than every `interval`, and once more when the requests that were on their way have landed, since each of them
/// may have fetched what was missed and then lowers its mirror's mark. One thread, which brings the time along.
class Resync {
public:
    using Clock = Flights::Clock;

    Resync(std::chrono::milliseconds interval, Flights& flights) : interval_(interval), flights_(flights) {}

    /// Makes a message due.
    void reportsMayBeMissing(Clock::time_point now);
    /// When `take` has something to decide.
    Clock::time_point due() const { return due_; }
    /// True when the message is to go out now.
    bool take(Clock::time_point now);

private:
    const std::chrono::milliseconds interval_;
    Flights& flights_;
    bool missing_ = false;                    // something that no message has told yet
    std::optional<Flights::Number> awaited_;  // the requests below it have to land
    Clock::time_point earliest_{};            // of the next message
    Clock::time_point due_ = Clock::time_point::max();
};

}  // namespace lcdcomm
