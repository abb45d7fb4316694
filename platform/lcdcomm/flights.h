// Which requests are on their way.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <deque>
#include <mutex>
#include <set>

namespace lcdcomm {

/// Requests are numbered as they start. One stays on its way for some time after its end, since its sender has yet to
/// take in the reply. Any thread.
class Flights {
public:
    using Clock = std::chrono::steady_clock;
    using Number = std::uint64_t;

    explicit Flights(std::chrono::milliseconds landing) : landingTime_(landing) {}

    Number begin() {
        const std::lock_guard lock(mutex_);
        flying_.insert(flying_.end(), next_);
        return next_++;
    }
    void end(Number flight, Clock::time_point now) {
        const std::lock_guard lock(mutex_);
        flying_.erase(flight);
        landing_.push_back({flight, now + landingTime_});
        forgetLandedLocked(now);
    }

    /// The number of the next request to start.
    Number next() const {
        const std::lock_guard lock(mutex_);
        return next_;
    }
    /// Whether one of the requests below `number` is still on its way.
    bool anyBefore(Number number, Clock::time_point now) {
        const std::lock_guard lock(mutex_);
        forgetLandedLocked(now);
        return (!flying_.empty() && *flying_.begin() < number) ||
               std::any_of(landing_.begin(), landing_.end(), [=](const Landing& each) { return each.flight < number; });
    }

private:
    struct Landing {
        Number flight;
        Clock::time_point landed;
    };

    void forgetLandedLocked(Clock::time_point now) {
        while (!landing_.empty() && landing_.front().landed <= now) {
            landing_.pop_front();
        }
    }

    const std::chrono::milliseconds landingTime_;
    mutable std::mutex mutex_;
    Number next_ = 0;              // guarded by mutex_
    std::set<Number> flying_;      // guarded by mutex_
    std::deque<Landing> landing_;  // guarded by mutex_; in the order of their ends
};

/// One request's flight.
class Flight {
public:
    explicit Flight(Flights& flights) : flights_(flights), number_(flights.begin()) {}
    Flight(const Flight&) = delete;
    Flight& operator=(const Flight&) = delete;
    ~Flight() { flights_.end(number_, Flights::Clock::now()); }

private:
    Flights& flights_;
    const Flights::Number number_;
};

}  // namespace lcdcomm
