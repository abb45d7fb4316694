// Sees what passes through the channel and the receiver.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include "lcd/commchannel/autoreport.h"

namespace lcdcomm {

/// How a request ended.
enum class RequestEnd {
    Replied,      ///< with any status
    Gated,        ///< with status 200 and a body that is no JSON text the plug-in could read to its end
    TooLarge,     ///< the reply's body passed its bound
    TimedOut,     ///< not complete in time
    Unreachable,  ///< no connection to the device
    Distrusted,   ///< the device couldn't prove who it is
    Cut,          ///< the connection broke off
    Garbled,      ///< what came back is no HTTP
    Malformed,    ///< not sent: its path or a header can't be
    Stopped,      ///< broken off or turned away by the host's stop
    Failed,       ///< in any other way
};

/// The same for a person, to follow the request's name.
inline const char* textOf(RequestEnd end) {
    constexpr const char* kTexts[] = {"was answered",
                                      "was answered with a body that is no complete JSON text",
                                      "was answered with more than is allowed",
                                      "was not answered in time",
                                      "did not reach the device",
                                      "met a device that could not prove its identity",
                                      "was cut off",
                                      "was answered with something that is no HTTP",
                                      "has a path or a header that can't be sent",
                                      "was ended by the stop",
                                      "failed"};
    return kTexts[static_cast<std::size_t>(end)];
}

/// A request that has ended. Pointers and references hold during the call alone. A login shows the password in its
/// body and the new token in its reply: neither belongs into a log.
struct RequestSeen {
    using TimePoint = std::chrono::steady_clock::time_point;

    const char* verb;
    const std::string& path;
    const std::string* body;   ///< null without one
    const std::string* reply;  ///< what came of it; null when nothing was received
    RequestEnd how;
    bool arrived;          ///< what the sender is told: that it has a reply
    bool resent;           ///< the device refused the token first, and got the request again with a new one
    std::uint16_t status;  ///< 0 when none was received
    int sequenceTag;
    TimePoint start;
    TimePoint end;
};

/// A report on its way to its decoders. References hold during the call alone.
struct ReportSeen {
    std::uint32_t id;
    const LCD::CommChannel::AutoReportSource& source;
    const std::string& body;
    const std::string& epoch;  ///< of the device: new at each of its starts
    std::uint64_t number;      ///< within the epoch
    std::chrono::steady_clock::time_point arrival;
};

/// Entered with `ICommStatus::observe`. Each call holds up the thread that makes it, which may hold a lock of its
/// component: keep it short, and neither send requests nor call a component from it.
class ICommObserver {
public:
    /// The requester's thread, so many at once; the last thing before it gets its result.
    virtual void requestEnded(const RequestSeen& /*request*/) {}
    /// The decoder thread, right before the report's decoders, if it has any.
    virtual void reportArrived(const ReportSeen& /*report*/) {}
    /// The decoder thread, right after it has posted the message that marks all mirrors for a new fetch. The message
    /// centre's thread marks them a moment later: who asks for data from here may still get the old.
    virtual void mirrorsStale() {}

protected:
    ~ICommObserver() = default;
};

}  // namespace lcdcomm
