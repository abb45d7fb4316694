// Waiting for what another thread will do, with a deadline.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace lcdtest {

inline constexpr std::chrono::seconds kDeadline{20};

/// A mutex and a condition variable around what is waited for.
class Monitor {
public:
    template <class Change>
    void change(Change&& apply) {
        std::lock_guard lock(mutex_);
        apply();
        changed_.notify_all();  // under the lock: who waited may destroy the monitor as soon as it is released
    }
    template <class Read>
    auto read(Read&& get) const {
        std::lock_guard lock(mutex_);
        return get();
    }
    /// False when the deadline passed first.
    template <class Condition>
    bool waitUntil(Condition&& condition, std::chrono::milliseconds deadline = kDeadline) const {
        std::unique_lock lock(mutex_);
        return changed_.wait_for(lock, deadline, condition);
    }

private:
    mutable std::mutex mutex_;
    mutable std::condition_variable changed_;
};

}  // namespace lcdtest
