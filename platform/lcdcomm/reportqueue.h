// The reports between the thread that reads and the thread that decodes.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <mutex>
#include <optional>
#include <stop_token>
#include <variant>

#include "platform/lcdcomm/report.h"

namespace lcdcomm {

/// What the decoders' thread takes: reports, and between them the places where some may be missing.
using Delivery = std::variant<Report, Gap>;

/// Bounded in reports and bytes. A report that finds it full is dropped, which leaves a gap; gaps that follow
/// one another without a report are one for each kind at most. One thread puts, one takes.
class ReportQueue {
public:
    using Clock = std::chrono::steady_clock;

    /// `depth` follows the number of reports that wait.
    ReportQueue(std::size_t mostReports, std::size_t mostBytes, std::atomic<std::uint64_t>& depth)
        : mostReports_(mostReports), mostBytes_(mostBytes), depth_(depth) {}

    /// False when the queue is full.
    bool put(Report report);
    void put(Gap gap);
    /// Waits for the next delivery. None when there was none by `end`, and when `stop` is requested, whatever is
    /// still queued.
    std::optional<Delivery> take(const std::stop_token& stop, Clock::time_point end = Clock::time_point::max());

private:
    void putGapLocked(Gap gap);

    const std::size_t mostReports_;
    const std::size_t mostBytes_;

    std::atomic<std::uint64_t>& depth_;  // written under mutex_
    std::mutex mutex_;
    std::condition_variable filled_;
    std::deque<Delivery> deliveries_;  // guarded by mutex_
    std::size_t bytes_ = 0;            // guarded by mutex_
};

}  // namespace lcdcomm
