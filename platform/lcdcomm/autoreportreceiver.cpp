#include "platform/lcdcomm/autoreportreceiver.h"

#include <pthread.h>

#include "kt/log.h"
#include "platform/ktp/knownsettings.h"

namespace lcdcomm {

AutoReportReceiver::AutoReportReceiver()
    : link_(Link::shared()),
      queue_(static_cast<std::size_t>(ktp::valueOf(ktp::kQueuedReports)),
             static_cast<std::size_t>(ktp::valueOf(ktp::kQueuedBytes)), link_->receiver.queued),
      stream_(*link_, queue_) {}

void AutoReportReceiver::registerDecodeCallback(std::uint32_t reportId, LCD::CommChannel::DecodeCallback callback) {
    if (running_) {
        KT_WARN("a decoder for report {:#x} comes too late, the receiver runs already", reportId);
        return;
    }
    callbacks_[reportId].push_back(std::move(callback));
}

int AutoReportReceiver::handleMessage(const ktp::IMessage* message) {
    if (message->id() == ktp::kSystemRun) {
        start();
    } else if (message->id() == ktp::kSystemStop) {
        stop();
    }
    return 0;
}

void AutoReportReceiver::start() {
    running_ = true;
    decoder_ = std::jthread([this](const std::stop_token& stop) {
        pthread_setname_np(pthread_self(), "lcd-decoders");
        decode(stop);
    });
    reader_ = std::jthread([this](const std::stop_token& stop) {
        pthread_setname_np(pthread_self(), "lcd-reports");
        stream_.read(stop);
    });
}

void AutoReportReceiver::stop() {
    for (std::jthread* thread : {&reader_, &decoder_}) {
        thread->request_stop();
    }
    for (std::jthread* thread : {&reader_, &decoder_}) {
        if (thread->joinable()) {
            thread->join();
        }
    }
}

void AutoReportReceiver::decode(const std::stop_token& stop) {
    while (const std::optional<Delivery> delivery = queue_.take(stop)) {
        std::visit([this](const auto& what) { deliver(what); }, *delivery);
    }
}

void AutoReportReceiver::deliver(const Report& report) {
    ReceiverCounters& counters = link_->receiver;
    const auto bound = callbacks_.find(report.id);
    if (bound == callbacks_.end()) {
        counters.unbound.fetch_add(1, std::memory_order_relaxed);
        return;
    }
    for (const LCD::CommChannel::DecodeCallback& callback : bound->second) {
        const bool taken = callback(report.body, report.source);
        counters.decoded.fetch_add(1, std::memory_order_relaxed);
        counters.decoderRefused.fetch_add(taken ? 0 : 1, std::memory_order_relaxed);
    }
}

void AutoReportReceiver::deliver(Gap gap) {
    constexpr const char* kReasons[] = {"the stream was opened", "the device was started anew",
                                        "numbers were passed over", "the queue was full"};
    link_->receiver.gaps.fetch_add(1, std::memory_order_relaxed);
    if (gapLog_.due()) {
        KT_INFO("reports may be missing here: {}", kReasons[static_cast<std::size_t>(gap)]);
    }
}

}  // namespace lcdcomm
