#include "platform/lcdcomm/link.h"

#include <algorithm>
#include <bit>
#include <mutex>

#include "platform/ktp/knownsettings.h"
#include "platform/lcdcomm/curllibrary.h"

namespace lcdcomm {

void ChannelCounters::addLatency(std::chrono::microseconds time) {
    const auto bucket = static_cast<std::size_t>(std::bit_width(static_cast<std::uint64_t>(time.count())));
    latency[std::min(bucket, latency.size() - 1)].fetch_add(1, std::memory_order_relaxed);
}

ChannelStatus ChannelCounters::status() const {
    ChannelStatus sums{requests, failures, gated, refused, bytesSent, bytesReceived, {}};
    std::copy(latency.begin(), latency.end(), sums.latency.begin());
    return sums;
}

ReceiverStatus ReceiverCounters::status() const {
    return {connected,  connects, bytes,   reports,        malformed, gated,   late,
            overflowed, unbound,  decoded, decoderRefused, gaps,      resyncs, queued};
}

Link::Link() : flights(std::chrono::milliseconds(ktp::valueOf(ktp::kResyncEveryMs))) {}

std::shared_ptr<Link> Link::shared() {
    static std::mutex mutex;
    static std::weak_ptr<Link> current;
    const std::lock_guard lock(mutex);
    std::shared_ptr<Link> link = current.lock();
    if (!link) {
        keepCurlLoaded();
        link = std::make_shared<Link>();
        current = link;
    }
    return link;
}

}  // namespace lcdcomm
