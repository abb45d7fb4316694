// The reports of the device and the streams that carry them to its clients, as server-sent events.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace devicesim {

/// Who caused a report.
struct Source {
    std::string token = {};
    std::int32_t sequence = 0;
};

/// The token of changes that the device makes by itself.
inline constexpr std::string_view kDeviceToken = "device";

struct Report {
    std::uint32_t id = 0;
    std::string body;
    Source source;
};

/// The events on their way to one reader. Any thread.
class ReportStream {
public:
    /// Holds at most `bound` bytes back for its reader.
    explicit ReportStream(std::size_t bound) : bound_(bound) {}

    /// False once the stream is closed; a reader too slow for its bound closes it here.
    bool push(std::string_view text);

    /// Waits for what there is to send: events, or a comment line after `heartbeat` of silence. Nothing once
    /// the stream is closed.
    std::optional<std::string> next(std::chrono::milliseconds heartbeat);

    void close();

private:
    const std::size_t bound_;
    std::mutex mutex_;
    std::condition_variable wake_;
    // Guarded by mutex_.
    std::string pending_ = ":\n";  // a comment line tells a new reader that it is connected
    bool closed_ = false;
};

/// Numbers the reports and hands them to all streams. Not synchronised: belongs to the owner of the state, so
/// that the order of the numbers is the order of the changes.
class Reports {
public:
    Reports(std::size_t streams, std::size_t streamQueue);

    /// A new reader; null if there are too many.
    std::shared_ptr<ReportStream> open();
    void push(const Report& report);
    /// As after switching off and on: no readers, a new epoch, numbers from 1.
    void restart();
    /// Closes all streams for good.
    void close();

    std::size_t streamsOpen();
    std::uint64_t sent() const { return sent_; }

private:
    void closeStreams();

    const std::size_t streamQueue_;
    std::size_t streamLimit_;
    std::vector<std::weak_ptr<ReportStream>> streams_;  // owned by the connections that serve them
    std::string epoch_;
    std::uint64_t number_ = 0;
    std::uint64_t sent_ = 0;
};

}  // namespace devicesim
