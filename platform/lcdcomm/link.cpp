#include "platform/lcdcomm/link.h"

#include <algorithm>
#include <bit>

#include "platform/lcdcomm/curllibrary.h"

namespace lcdcomm {

void ChannelCounters::addLatency(std::chrono::microseconds time) {
    const auto bucket = static_cast<std::size_t>(std::bit_width(static_cast<std::uint64_t>(time.count())));
    latency[std::min(bucket, latency.size() - 1)].fetch_add(1, std::memory_order_relaxed);
}

ChannelStatus ChannelCounters::status() const {
    ChannelStatus sums{requests, failures, refused, bytesSent, bytesReceived, {}};
    std::copy(latency.begin(), latency.end(), sums.latency.begin());
    return sums;
}

ReceiverStatus ReceiverCounters::status() const {
    return {connected,  connects, bytes,   reports,        malformed, late,
            overflowed, unbound,  decoded, decoderRefused, gaps,      queued};
}

void TokenBox::set(const std::string& token) {
    {
        const std::lock_guard lock(mutex_);
        token_ = token;
    }
    changed_.notify_all();
}

std::string TokenBox::get() const {
    const std::lock_guard lock(mutex_);
    return token_;
}

std::string TokenBox::await(const std::string& unwanted, std::chrono::milliseconds time,
                            const std::stop_token& stop) const {
    std::unique_lock lock(mutex_);
    changed_.wait_for(lock, stop, time, [&] { return !token_.empty() && token_ != unwanted; });
    changed_.wait(lock, stop, [&] { return !token_.empty(); });
    return stop.stop_requested() ? std::string() : token_;
}

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
