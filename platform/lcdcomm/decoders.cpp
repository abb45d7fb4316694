#include "platform/lcdcomm/decoders.h"

#include <pthread.h>

#include "kt/log.h"
#include "ktp/api.h"
#include "lcd/memorycache/constants.h"
#include "platform/ktp/knownsettings.h"

namespace lcdcomm {

namespace {

namespace constants = LCD::MemoryCache::constants;
constexpr int kAllComponents = 9;

}  // namespace

Decoders::Decoders(Link& link)
    : link_(link),
      queue_(static_cast<std::size_t>(ktp::valueOf(ktp::kQueuedReports)),
             static_cast<std::size_t>(ktp::valueOf(ktp::kQueuedBytes)), link_.receiver.queued),
      messageCenter_(ktp::api::get().find<ktp::IMessageCenter>(ktp::kMessageCenterName)),
      resync_(std::chrono::milliseconds(ktp::valueOf(ktp::kResyncEveryMs)), link_.flights) {}

void Decoders::bind(std::uint32_t reportId, LCD::CommChannel::DecodeCallback callback) {
    if (running_) {
        KT_WARN("a decoder for report {:#x} comes too late, the receiver runs already", reportId);
        return;
    }
    callbacks_[reportId].push_back(std::move(callback));
}

void Decoders::start() {
    running_ = true;
    thread_ = std::jthread([this](const std::stop_token& stop) {
        pthread_setname_np(pthread_self(), "lcd-decoders");
        run(stop);
    });
}

void Decoders::stop() { thread_ = {}; }

void Decoders::run(const std::stop_token& stop) {
    while (!stop.stop_requested()) {
        if (const std::optional<Delivery> delivery = queue_.take(stop, resync_.due())) {
            std::visit([this](const auto& what) { deliver(what); }, *delivery);
        }
        if (resync_.take(Resync::Clock::now())) {
            markMirrors();
        }
    }
}

void Decoders::deliver(const Report& report) {
    ReceiverCounters& counters = link_.receiver;
    if (ICommObserver* observer = link_.observer) {
        observer->reportArrived({report.id, report.source, report.body, report.epoch, report.number, report.arrival});
    }
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

void Decoders::deliver(Gap gap) {
    constexpr const char* kReasons[] = {"the stream was opened", "the device was started anew",
                                        "numbers were passed over", "the queue was full", "one couldn't be read"};
    link_.receiver.gaps.fetch_add(1, std::memory_order_relaxed);
    if (gapLog_.due()) {
        KT_INFO("reports may be missing here: {}", kReasons[static_cast<std::size_t>(gap)]);
    }
    resync_.reportsMayBeMissing(Resync::Clock::now());
    if (gap == Gap::NewEpoch) {
        // A device forgets its sessions when it starts.
        link_.session.askForLogin();
    }
}

void Decoders::markMirrors() {
    if (messageCenter_ != nullptr) {
        // As if the token had been cleared: that is what all mirrors know.
        ktp::IMessage* message = messageCenter_->createMessage(constants::MSG_TOKEN_CLEARED,
                                                               constants::OBJ_MEMORYCACHE_USER_NAME, nullptr, 0, 0);
        messageCenter_->postMessage(&message, kAllComponents, 0);
        messageCenter_->releaseMessage(message);
    }
    link_.receiver.resyncs.fetch_add(1, std::memory_order_relaxed);
    if (ICommObserver* observer = link_.observer) {
        observer->mirrorsStale();
    }
}

}  // namespace lcdcomm
