// Where the plug-in's threads leave what they deliver.
#pragma once

#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>

#include "panel/session.h"

namespace panel {

/// A queue that one thread reads.
class Deliveries {
public:
    void add(Delivered one) {
        {
            const std::lock_guard lock(mutex_);
            waiting_.push_back(std::move(one));
            ++count_;
        }
        changed_.notify_all();
    }
    Receiver receiver() {
        return [this](Delivered one) { add(std::move(one)); };
    }
    /// The next delivery, or nothing when `deadline` comes first.
    std::optional<Delivered> next(Clock::time_point deadline) {
        std::unique_lock lock(mutex_);
        if (!changed_.wait_until(lock, deadline, [this] { return !waiting_.empty(); })) {
            return std::nullopt;
        }
        Delivered one = std::move(waiting_.front());
        waiting_.pop_front();
        return one;
    }
    std::size_t count() const {
        const std::lock_guard lock(mutex_);
        return count_;
    }

private:
    mutable std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<Delivered> waiting_;
    std::size_t count_ = 0;
};

}  // namespace panel
