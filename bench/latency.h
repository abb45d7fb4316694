// Times between two threads.
#pragma once

#include <chrono>
#include <functional>
#include <semaphore>
#include <stdexcept>
#include <string>
#include <vector>

namespace bench {

using Clock = std::chrono::steady_clock;

inline double micros(Clock::duration time) { return std::chrono::duration<double, std::micro>(time).count(); }

/// A moment in another thread that this one waits for.
class Moment {
public:
    void reach() {
        time_ = Clock::now();
        reached_.release();
    }
    Clock::time_point wait() {
        if (!reached_.try_acquire_for(std::chrono::seconds(20))) {
            throw std::runtime_error("what is measured did not come in time");
        }
        return time_;
    }

private:
    std::binary_semaphore reached_{0};
    Clock::time_point time_;
};

/// One thing whose time is taken: `once` gives microseconds.
struct Latency {
    std::string name;
    std::function<double()> once;
    std::vector<double> times = {};
};

/// Runs all of them in random order, again and again, with a rest before each, so that threads are asleep.
void sample(std::vector<Latency>& all, int rounds, std::chrono::milliseconds rest);

}  // namespace bench
