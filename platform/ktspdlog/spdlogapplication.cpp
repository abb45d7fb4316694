#include "kt/spdlogapplication.h"

#include <spdlog/sinks/dist_sink.h>

namespace KT {

namespace {

// The logger's one sink, which passes lines on and takes its own lock when its set changes.
spdlog::sinks::dist_sink_mt& distributor(const spdlog::logger& logger) {
    return static_cast<spdlog::sinks::dist_sink_mt&>(*logger.sinks().front());
}

}  // namespace

SpdlogApplication& SpdlogApplication::instance() {
    static SpdlogApplication application;
    return application;
}

SpdlogApplication::SpdlogApplication() {
    logger_ = std::make_shared<spdlog::logger>("kt", std::make_shared<spdlog::sinks::dist_sink_mt>());
    logger_->set_level(spdlog::level::info);
    logger_->flush_on(spdlog::level::warn);
}

void SpdlogApplication::addSink(spdlog::sink_ptr sink) { distributor(*logger_).add_sink(std::move(sink)); }

void SpdlogApplication::removeSink(const spdlog::sink_ptr& sink) { distributor(*logger_).remove_sink(sink); }

}  // namespace KT
