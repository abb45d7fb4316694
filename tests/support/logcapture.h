// The lines that the application's logger writes while this lives.
#pragma once

#include <spdlog/pattern_formatter.h>
#include <spdlog/sinks/ringbuffer_sink.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "kt/spdlogapplication.h"

namespace lcdtest {

class LogCapture {
public:
    LogCapture() {
        sink_->set_formatter(
            std::make_unique<spdlog::pattern_formatter>("%l: %v", spdlog::pattern_time_type::local, ""));
        KT::SpdlogApplication::instance().addSink(sink_);
    }
    ~LogCapture() { KT::SpdlogApplication::instance().removeSink(sink_); }
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    std::vector<std::string> lines() const { return sink_->last_formatted(); }
    std::size_t count(const std::string& text) const {
        const auto all = lines();
        return static_cast<std::size_t>(std::count_if(
            all.begin(), all.end(), [&](const std::string& line) { return line.find(text) != std::string::npos; }));
    }
    bool contains(const std::string& text) const { return count(text) != 0; }

private:
    const std::shared_ptr<spdlog::sinks::ringbuffer_sink_mt> sink_ =
        std::make_shared<spdlog::sinks::ringbuffer_sink_mt>(1000);
};

}  // namespace lcdtest
