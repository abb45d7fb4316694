// What the components of this plug-in share.
#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>

#include "platform/lcdcomm/flights.h"
#include "platform/lcdcomm/icommstatus.h"
#include "platform/lcdcomm/session.h"

namespace lcdcomm {

using Counter = std::atomic<std::uint64_t>;

/// The sums behind `ICommStatus`. Written without order, read as they are.
struct ChannelCounters {
    Counter requests{0}, failures{0}, gated{0}, refused{0}, bytesSent{0}, bytesReceived{0};
    std::array<Counter, kLatencyBuckets> latency{};

    void addLatency(std::chrono::microseconds time);
    ChannelStatus status() const;
};

struct ReceiverCounters {
    std::atomic<bool> connected{false};
    Counter connects{0}, bytes{0}, reports{0}, malformed{0}, gated{0}, late{0}, overflowed{0}, unbound{0}, decoded{0},
        decoderRefused{0}, gaps{0}, resyncs{0}, queued{0};

    ReceiverStatus status() const;
};

struct Link {
    Link();

    Session session;
    Flights flights;  // all requests but the logins, which fill no mirror
    ChannelCounters channel;
    ReceiverCounters receiver;
    std::atomic<ICommObserver*> observer{nullptr};

    /// The one link of the components that exist now. Made with the first of them, gone with the last.
    static std::shared_ptr<Link> shared();
};

}  // namespace lcdcomm
