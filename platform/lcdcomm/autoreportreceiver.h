// Hands the device's reports to the decoders that are bound to them.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <thread>
#include <unordered_map>
#include <vector>

#include "ktp/imessage.h"
#include "ktp/imessagecenter.h"
#include "lcd/commchannel/autoreport.h"
#include "platform/lcdcomm/atmostevery.h"
#include "platform/lcdcomm/link.h"
#include "platform/lcdcomm/reportqueue.h"
#include "platform/lcdcomm/reportstream.h"
#include "platform/lcdcomm/resync.h"

namespace lcdcomm {

/// Two threads: one reads the stream, one calls the decoders, so that a slow decoder holds up no heartbeat.
class AutoReportReceiver final : public LCD::CommChannel::IAutoReportReceiver, public ktp::IMessageHandler {
public:
    AutoReportReceiver();

    // Message thread, before the system run; a callback that comes later is refused with a warning.
    void registerDecodeCallback(std::uint32_t reportId, LCD::CommChannel::DecodeCallback callback) override;
    // Message thread. After the stop no decoder is called.
    int handleMessage(const ktp::IMessage* message) override;

private:
    void start();
    void stop();
    // Decoder thread.
    void decode(const std::stop_token& stop);
    void deliver(const Report& report);
    void deliver(Gap gap);
    void markMirrors();

    const std::shared_ptr<Link> link_;
    ReportQueue queue_;
    ReportStream stream_;
    ktp::IMessageCenter* const messageCenter_;  // null under a host without one
    Resync resync_;                             // decoder thread
    OncePerSecond gapLog_;
    std::atomic<bool> running_ = false;
    // Fixed while it runs.
    std::unordered_map<std::uint32_t, std::vector<LCD::CommChannel::DecodeCallback>> callbacks_;
    std::jthread decoder_;
    std::jthread reader_;
};

}  // namespace lcdcomm
