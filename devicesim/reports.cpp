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

}  // namespace

bool ReportStream::push(std::string_view text) {
    const std::lock_guard lock(mutex_);
    if (!closed_ && pending_.size() + text.size() > bound_) {
        closed_ = true;
        pending_ = {};
    }
    if (!closed_) {
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
    return pending_.empty() ? ":\n" : std::exchange(pending_, {});
}

void ReportStream::close() {
    const std::lock_guard lock(mutex_);
    closed_ = true;
    pending_ = {};
    wake_.notify_one();
}

Reports::Reports(std::size_t streams, std::size_t streamQueue)
    : streamQueue_(streamQueue), streamLimit_(streams), epoch_(randomHex(2)) {}

std::shared_ptr<ReportStream> Reports::open() {
    if (streamsOpen() >= streamLimit_) {
        return nullptr;
    }
    auto stream = std::make_shared<ReportStream>(streamQueue_);
    streams_.push_back(stream);
    return stream;
}

void Reports::push(const Report& report) {
    ++sent_;
    std::string event = fmt::format("event: {:x}\nid: {}-{}\n", report.id, epoch_, ++number_);
    fmt::format_to(std::back_inserter(event), "data: {{\"token\":{},\"sequence\":{}}}\n",
                   nlohmann::json(report.source.token).dump(), report.source.sequence);
    appendData(event, report.body);
    event += '\n';
    std::erase_if(streams_, [&event](const auto& weak) {
        const auto stream = weak.lock();
        return !stream || !stream->push(event);
    });
}

void Reports::restart() {
    closeStreams();
    epoch_ = randomHex(2);
    number_ = 0;
}

void Reports::close() {
    closeStreams();
    streamLimit_ = 0;
}

void Reports::closeStreams() {
    for (const auto& weak : streams_) {
        if (const auto stream = weak.lock()) {
            stream->close();
        }
    }
    streams_.clear();
}

std::size_t Reports::streamsOpen() {
    std::erase_if(streams_, [](const auto& weak) { return weak.expired(); });
    return streams_.size();
}

}  // namespace devicesim
