#include "platform/lcdcomm/resync.h"

#include <algorithm>

namespace lcdcomm {

void Resync::reportsMayBeMissing(Clock::time_point now) {
    missing_ = true;
    due_ = std::min(due_, std::max(now, earliest_));
}

bool Resync::take(Clock::time_point now) {
    if (now < due_) {
        return false;
    }
    const bool landed = awaited_ && !flights_.anyBefore(*awaited_, now);
    const bool told = missing_ || landed;
    if (told) {
        earliest_ = now + interval_;
        awaited_.reset();
    }
    if (const Flights::Number next = flights_.next(); missing_ && flights_.anyBefore(next, now)) {
        awaited_ = next;
    }
    missing_ = false;
    due_ = awaited_ ? now + interval_ : Clock::time_point::max();
    return told;
}

}  // namespace lcdcomm
