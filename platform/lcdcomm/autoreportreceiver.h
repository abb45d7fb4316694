// The receiver of the device's reports.
#pragma once

#include <cstdint>
#include <memory>
#include <thread>

#include "ktp/imessage.h"
#include "lcd/commchannel/autoreport.h"
#include "platform/lcdcomm/decoders.h"
#include "platform/lcdcomm/link.h"
#include "platform/lcdcomm/reportstream.h"

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
    const std::shared_ptr<Link> link_;
    Decoders decoders_;
    ReportStream stream_;
    std::jthread reader_;
};

}  // namespace lcdcomm
