// What the device does later by itself: the steps of a transition, the progress of a backup.
#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <optional>
#include <utility>

namespace devicesim {

struct Interior;

/// Not synchronised: belongs to the owner of the state, whose timer thread runs the tasks under the state's
/// lock. A task that wants to go on puts itself in again; one whose matter has gone lets it be.
class Agenda {
public:
    using Clock = std::chrono::steady_clock;
    using Task = std::function<void(Interior&)>;

    void at(Clock::time_point when, Task task) { tasks_.emplace(when, std::move(task)); }
    void after(Clock::duration delay, Task task) { at(Clock::now() + delay, std::move(task)); }

    bool empty() const { return tasks_.empty(); }
    /// When the next task is due. Nothing if there is none.
    std::optional<Clock::time_point> next() const {
        return tasks_.empty() ? std::nullopt : std::optional(tasks_.begin()->first);
    }
    /// Takes out the next task, of which there must be one.
    Task take() { return std::move(tasks_.extract(tasks_.begin()).mapped()); }

private:
    std::multimap<Clock::time_point, Task> tasks_;
};

}  // namespace devicesim
