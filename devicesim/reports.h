// The reports of the device and the streams that carry them to its clients, as server-sent events.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
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

/// A report on its way out, and what becomes of it there.
struct Delivery {
    Report report;
    std::uint64_t skip = 0;  // numbers before its own that no report gets
    int copies = 1;
    std::size_t wait = 0;  // reports that go before it, although their numbers are higher
    std::vector<std::function<void(std::string&)>> spoils = {};  // change the event's text
    bool cut = false;                                            // all streams end behind it
};

/// The events on their way to one reader. Any thread.
class ReportStream {
public:
    /// Holds at most `bound` bytes back for its reader. Begins with a comment line, which tells a new reader that it is
    /// connected.
    ReportStream(std::size_t bound, std::string position);

    /// False once the stream is closed; a reader too slow for its bound closes it here.
    bool push(std::string_view text);

    /// The epoch and number of the last report: "c0fe-17". Comment lines tell it, so that a reader knows what it
    /// missed.
    void setPosition(std::string position);

    /// Waits for what there is to send: events, or a comment line after `heartbeat` of silence; an empty text
    /// then if the stream is mute. Nothing once the stream is closed.
    std::optional<std::string> next(std::chrono::milliseconds heartbeat);

    void close();
    /// What is on its way still goes out, then the stream is closed.
    void end();
    /// While it is on, nothing goes out: no report, no comment line. The reports are lost.
    void mute(bool on);

private:
    const std::size_t bound_;
    std::mutex mutex_;
    std::condition_variable wake_;
    // Guarded by mutex_.
    std::string position_;
    std::string pending_;
    bool closed_ = false;
    bool ending_ = false;
    bool mute_ = false;
};

/// Numbers the reports and hands them to all streams. Not synchronised: belongs to the owner of the state, so
/// that the order of the numbers is the order of the changes.
class Reports {
public:
    /// What a report meets before it gets its number.
    using Meet = std::function<void(Delivery&)>;

    Reports(std::size_t streams, std::size_t streamQueue, Meet meet = {});

    /// A new reader; null if there are too many.
    std::shared_ptr<ReportStream> open();
    void push(Report report);
    /// As after switching off and on: no readers, a new epoch, numbers from 1.
    void restart();
    /// Closes all streams for good.
    void close();
    /// Closes all streams.
    void cutStreams();
    /// While it is on, all streams stay open and say nothing.
    void mute(bool on);

    std::size_t streamsOpen();
    std::uint64_t sent() const { return sent_; }

private:
    /// An event and what is left of its delivery.
    struct Outgoing {
        std::string event;
        int copies;
        std::size_t wait;
        bool cut;
    };

    std::string position() const;
    std::string eventOf(const Report& report) const;
    void send(const Outgoing& outgoing);
    template <class Act>
    void eachStream(Act&& act);

    const std::size_t streamQueue_;
    const Meet meet_;
    std::size_t streamLimit_;
    std::vector<std::weak_ptr<ReportStream>> streams_;  // owned by the connections that serve them
    std::string epoch_;
    std::uint64_t number_ = 0;
    std::uint64_t sent_ = 0;
    bool mute_ = false;
    std::vector<Outgoing> waiting_;
};

}  // namespace devicesim
