#include "platform/lcdcomm/autoreportreceiver.h"

#include <pthread.h>

#include <utility>

namespace lcdcomm {

AutoReportReceiver::AutoReportReceiver()
    : link_(Link::shared()), decoders_(*link_), stream_(*link_, decoders_.queue()) {}

void AutoReportReceiver::registerDecodeCallback(std::uint32_t reportId, LCD::CommChannel::DecodeCallback callback) {
    decoders_.bind(reportId, std::move(callback));
}

int AutoReportReceiver::handleMessage(const ktp::IMessage* message) {
    if (message->id() == ktp::kSystemRun) {
        decoders_.start();
        reader_ = std::jthread([this](const std::stop_token& stop) {
            pthread_setname_np(pthread_self(), "lcd-reports");
            stream_.read(stop);
        });
    } else if (message->id() == ktp::kSystemStop) {
        reader_ = {};  // breaks off at once
        decoders_.stop();
    }
    return 0;
}

}  // namespace lcdcomm
