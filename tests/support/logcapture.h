// The lines that the application's logger writes while this lives.
#pragma once

#include <spdlog/sinks/base_sink.h>

#include <algorithm>
#include <mutex>
#include <string>
#include <vector>

#include "kt/spdlogapplication.h"

namespace lcdtest {

class LogCapture {
public:
    LogCapture() : sink_(std::make_shared<Sink>()) { KT::SpdlogApplication::instance().addSink(sink_); }
    ~LogCapture() { KT::SpdlogApplication::instance().removeSink(sink_); }
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    std::vector<std::string> lines() const { return sink_->lines(); }
    std::size_t count(const std::string& text) const {
        const auto all = lines();
        return static_cast<std::size_t>(std::count_if(
            all.begin(), all.end(), [&](const std::string& line) { return line.find(text) != std::string::npos; }));
    }
    bool contains(const std::string& text) const { return count(text) != 0; }

private:
    class Sink : public spdlog::sinks::base_sink<std::mutex> {
    public:
        std::vector<std::string> lines() {
            std::lock_guard lock(mutex_);
            return lines_;
        }

    private:
        void sink_it_(const spdlog::details::log_msg& message) override {
            lines_.push_back(std::string(spdlog::level::to_string_view(message.level).data())
                                 .append(": ")
                                 .append(message.payload.data(), message.payload.size()));
        }
        void flush_() override {}
        std::vector<std::string> lines_;
    };

    std::shared_ptr<Sink> sink_;
};

}  // namespace lcdtest
