#include "devicesim/reports.h"

#include <fmt/format.h>

#include <iterator>
#include <nlohmann/json.hpp>

#include "devicesim/tokens.h"

namespace devicesim {

namespace {

// One "data:" line for each line of the text; a carriage return ends a line for the readers too.
void appendData(std::string& event, std::string_view text) {
    for (;;) {
        const std::size_t end = text.find_first_of("\r\n");
        event.append("data: ").append(text.substr(0, end)).append("\n");
        if (end == std::string_view::npos) {
            return;
        }
        text.remove_prefix(text.substr(end, 2) == "\r\n" ? end + 2 : end + 1);
    }
}

std::string commentOf(const std::string& position) { return fmt::format(": {}\n", position); }

}  // namespace

ReportStream::ReportStream(std::size_t bound, std::string position)
    : bound_(bound), position_(std::move(position)), pending_(commentOf(position_)) {}

bool ReportStream::push(std::string_view text) {
    const std::lock_guard lock(mutex_);
    if (!closed_ && pending_.size() + text.size() > bound_) {
        closed_ = true;
        pending_ = {};
    }
    if (!closed_ && !ending_ && !mute_) {
        pending_ += text;
    }
    wake_.notify_one();
    return !closed_;
}

std::optional<std::string> ReportStream::next(std::chrono::milliseconds heartbeat) {
    std::unique_lock lock(mutex_);
    wake_.wait_for(lock, heartbeat, [this] { return closed_ || !pending_.empty(); });
    if (closed_) {
        return std::nullopt;
    }
    closed_ = ending_;
    return !pending_.empty() ? std::exchange(pending_, {}) : mute_ ? "" : commentOf(position_);
}

void ReportStream::setPosition(std::string position) {
    const std::lock_guard lock(mutex_);
    position_ = std::move(position);
}

void ReportStream::close() {
    const std::lock_guard lock(mutex_);
    closed_ = true;
    pending_ = {};
    wake_.notify_one();
}

void ReportStream::end() {
    const std::lock_guard lock(mutex_);
    ending_ = true;
    closed_ = closed_ || pending_.empty();
    wake_.notify_one();
}

void ReportStream::mute(bool on) {
    const std::lock_guard lock(mutex_);
    mute_ = on;
    pending_ = {};
}

Reports::Reports(std::size_t streams, std::size_t streamQueue, Meet meet)
    : streamQueue_(streamQueue), meet_(std::move(meet)), streamLimit_(streams), epoch_(randomHex(2)) {}

std::shared_ptr<ReportStream> Reports::open() {
    if (streamsOpen() >= streamLimit_) {
        return nullptr;
    }
    auto stream = std::make_shared<ReportStream>(streamQueue_, position());
    if (mute_) {
        stream->mute(true);
    }
    streams_.push_back(stream);
    return stream;
}

void Reports::push(Report report) {
    Delivery delivery{std::move(report)};
    if (meet_) {
        meet_(delivery);
    }
    number_ += delivery.skip + 1;
    Outgoing outgoing{eventOf(delivery.report), delivery.copies, delivery.wait, delivery.cut};
    for (const auto& spoil : delivery.spoils) {
        spoil(outgoing.event);
    }
    if (outgoing.wait == 0) {
        send(outgoing);
    }
    for (Outgoing& earlier : waiting_) {
        if (--earlier.wait == 0) {
            send(earlier);
        }
    }
    std::erase_if(waiting_, [](const Outgoing& earlier) { return earlier.wait == 0; });
    if (outgoing.wait > 0) {
        waiting_.push_back(std::move(outgoing));
    }
    eachStream([this](ReportStream& stream) { return stream.setPosition(position()), true; });
}

std::string Reports::position() const { return fmt::format("{}-{}", epoch_, number_); }

std::string Reports::eventOf(const Report& report) const {
    std::string event = fmt::format("event: {:x}\nid: {}\n", report.id, position());
    fmt::format_to(std::back_inserter(event), "data: {{\"token\":{},\"sequence\":{}}}\n",
                   nlohmann::json(report.source.token).dump(), report.source.sequence);
    appendData(event, report.body);
    event += '\n';
    return event;
}

void Reports::send(const Outgoing& outgoing) {
    for (int copy = 0; copy < outgoing.copies; ++copy) {
        ++sent_;
        eachStream([&outgoing](ReportStream& stream) { return stream.push(outgoing.event); });
    }
    if (outgoing.cut) {
        eachStream([](ReportStream& stream) { return stream.end(), false; });
    }
}

void Reports::restart() {
    cutStreams();
    epoch_ = randomHex(2);
    number_ = 0;
    waiting_.clear();
}

void Reports::close() {
    cutStreams();
    streamLimit_ = 0;
}

void Reports::cutStreams() {
    eachStream([](ReportStream& stream) { return stream.close(), false; });
}

void Reports::mute(bool on) {
    mute_ = on;
    eachStream([on](ReportStream& stream) { return stream.mute(on), true; });
}

std::size_t Reports::streamsOpen() {
    eachStream([](ReportStream&) { return true; });
    return streams_.size();
}

// Forgets the streams that have gone, and those for which `act` says false.
template <class Act>
void Reports::eachStream(Act&& act) {
    std::erase_if(streams_, [&act](const auto& weak) {
        const auto stream = weak.lock();
        return !stream || !act(*stream);
    });
}

}  // namespace devicesim
