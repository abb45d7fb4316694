#include "platform/lcdcomm/reportqueue.h"

#include <utility>

namespace lcdcomm {

namespace {

std::size_t sizeOf(const Report& report) {
    return sizeof report + report.epoch.size() + report.source.token.size() + report.body.size();
}

}  // namespace

bool ReportQueue::put(Report report) {
    const std::size_t size = sizeOf(report);
    bool fits = false;
    {
        const std::lock_guard lock(mutex_);
        fits = depth_ < mostReports_ && size <= mostBytes_ - bytes_;
        if (fits) {
            deliveries_.emplace_back(std::move(report));
            ++depth_;
            bytes_ += size;
        } else {
            putGapLocked(Gap::Overflow);
        }
    }
    filled_.notify_one();
    return fits;
}

void ReportQueue::put(Gap gap) {
    {
        const std::lock_guard lock(mutex_);
        putGapLocked(gap);
    }
    filled_.notify_one();
}

// Looks back as far as the last report.
void ReportQueue::putGapLocked(Gap gap) {
    for (auto last = deliveries_.rbegin(); last != deliveries_.rend(); ++last) {
        const Gap* known = std::get_if<Gap>(&*last);
        if (known == nullptr) {
            break;
        }
        if (*known == gap) {
            return;
        }
    }
    deliveries_.emplace_back(gap);
}

std::optional<Delivery> ReportQueue::take(const std::stop_token& stop, Clock::time_point end) {
    const std::stop_callback wakeForStop(stop, [this] {
        { const std::lock_guard lock(mutex_); }  // a taker that has seen no stop yet waits by now
        filled_.notify_one();
    });
    std::unique_lock lock(mutex_);
    const auto awaited = [&] { return !deliveries_.empty() || stop.stop_requested(); };
    if (end == Clock::time_point::max()) {
        filled_.wait(lock, awaited);  // spares the timer
    } else {
        filled_.wait_until(lock, end, awaited);
    }
    if (deliveries_.empty() || stop.stop_requested()) {
        return std::nullopt;
    }
    Delivery delivery = std::move(deliveries_.front());
    deliveries_.pop_front();
    if (const auto* report = std::get_if<Report>(&delivery)) {
        --depth_;
        bytes_ -= sizeOf(*report);
    }
    return delivery;
}

}  // namespace lcdcomm
