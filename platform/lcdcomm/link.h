// What the components of this plug-in share.
#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <stop_token>
#include <string>

#include "platform/lcdcomm/icommstatus.h"

namespace lcdcomm {

using Counter = std::atomic<std::uint64_t>;

/// The sums behind `ICommStatus`. Written without order, read as they are.
struct ChannelCounters {
    Counter requests{0}, failures{0}, refused{0}, bytesSent{0}, bytesReceived{0};
    std::array<Counter, kLatencyBuckets> latency{};

    void addLatency(std::chrono::microseconds time);
    ChannelStatus status() const;
};

struct ReceiverCounters {
    std::atomic<bool> connected{false};
    Counter connects{0}, bytes{0}, reports{0}, malformed{0}, late{0}, overflowed{0}, unbound{0}, decoded{0},
        decoderRefused{0}, gaps{0}, queued{0};

    ReceiverStatus status() const;
};

/// The session's token, which the channel is given and the receiver waits for. Any thread.
class TokenBox {
public:
    void set(const std::string& token);
    std::string get() const;
    /// Waits for a token, and up to `time` for one that differs from `unwanted`. What holds then; empty when
    /// `stop` came first.
    std::string await(const std::string& unwanted, std::chrono::milliseconds time, const std::stop_token& stop) const;

private:
    mutable std::mutex mutex_;
    mutable std::condition_variable_any changed_;
    std::string token_;  // guarded by mutex_
};

struct Link {
    TokenBox token;
    ChannelCounters channel;
    ReceiverCounters receiver;

    /// The one link of the components that exist now. Made with the first of them, gone with the last.
    static std::shared_ptr<Link> shared();
};

}  // namespace lcdcomm
