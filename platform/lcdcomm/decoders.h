// Hands reports to the decoders that are bound to them.
#pragma once

#include <atomic>
#include <cstdint>
#include <thread>
#include <unordered_map>
#include <vector>

#include "ktp/imessagecenter.h"
#include "lcd/commchannel/autoreport.h"
#include "platform/lcdcomm/atmostevery.h"
#include "platform/lcdcomm/link.h"
#include "platform/lcdcomm/reportqueue.h"
#include "platform/lcdcomm/resync.h"

namespace lcdcomm {

/// A queue and the thread that empties it: calls the decoders of each report, and where reports may be missing has
/// all mirrors marked for a new fetch.
class Decoders {
public:
    explicit Decoders(Link& link);

    /// Message thread, before the start; what comes later is refused with a warning.
    void bind(std::uint32_t reportId, LCD::CommChannel::DecodeCallback callback);
    void start();
    /// Waits for the decoder that runs; no other is called afterwards, whatever is still queued.
    void stop();

    ReportQueue& queue() { return queue_; }

private:
    // Decoders' thread.
    void run(const std::stop_token& stop);
    void deliver(const Report& report);
    void deliver(Gap gap);
    void markMirrors();

    Link& link_;
    ReportQueue queue_;
    ktp::IMessageCenter* const messageCenter_;  // null under a host without one
    Resync resync_;                             // decoders' thread
    OncePerSecond gapLog_;
    std::atomic<bool> running_ = false;
    // Fixed while it runs.
    std::unordered_map<std::uint32_t, std::vector<LCD::CommChannel::DecodeCallback>> callbacks_;
    std::jthread thread_;
};

}  // namespace lcdcomm
