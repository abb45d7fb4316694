// The process's logger, in libktspdlog.so.
#pragma once

#include <spdlog/logger.h>

#include <memory>

namespace KT {

class SpdlogBase {
public:
    /// The logger that all plug-ins share. Never null; any thread. Its sinks may be changed at run time
    /// through `SpdlogApplication`.
    const std::shared_ptr<spdlog::logger>& logger() const { return logger_; }

protected:
    SpdlogBase() = default;
    ~SpdlogBase() = default;

    std::shared_ptr<spdlog::logger> logger_;
};

/// The one logger of the application. Starts with no sink and level info.
class __attribute__((visibility("default"))) SpdlogApplication : public SpdlogBase {
public:
    static SpdlogApplication& instance();

    /// Any thread. A line that is being written may still reach a sink that was just removed.
    void addSink(spdlog::sink_ptr sink);
    void removeSink(const spdlog::sink_ptr& sink);

private:
    SpdlogApplication();
};

}  // namespace KT
