// What the channel and the receiver have seen, found under "lcdCommStatus".
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>

#include "platform/lcdcomm/icommobserver.h"

namespace lcdcomm {

inline constexpr const char* kCommStatusName = "lcdCommStatus";

/// Bucket 0 counts requests of less than a microsecond, bucket i those of 2^(i-1) up to 2^i microseconds, the
/// last one all that took longer.
inline constexpr std::size_t kLatencyBuckets = 28;

/// Sums since the plug-in was loaded.
struct ChannelStatus {
    std::uint64_t requests = 0;  ///< ended, well or not
    std::uint64_t failures = 0;  ///< of these, without a reply
    std::uint64_t gated = 0;     ///< of these, with a reply of status 200 that was no complete JSON text
    std::uint64_t refused = 0;   ///< sends that a stop turned away; not among the requests
    std::uint64_t bytesSent = 0;
    std::uint64_t bytesReceived = 0;
    std::array<std::uint64_t, kLatencyBuckets> latency{};  ///< of the requests that got a reply
};

/// Sums since the plug-in was loaded, and how things stand.
struct ReceiverStatus {
    bool connected = false;
    std::uint64_t connects = 0;        ///< streams that were opened; all but the first are reconnects
    std::uint64_t bytes = 0;           ///< of the stream
    std::uint64_t reports = 0;         ///< well-formed ones, those dropped later included
    std::uint64_t malformed = 0;       ///< events that are no report
    std::uint64_t gated = 0;           ///< dropped: the body is no complete JSON text
    std::uint64_t late = 0;            ///< dropped: duplicates and numbers that were overtaken
    std::uint64_t overflowed = 0;      ///< dropped: the queue was full
    std::uint64_t unbound = 0;         ///< taken from the queue with no decoder for their id
    std::uint64_t decoded = 0;         ///< calls of decoders
    std::uint64_t decoderRefused = 0;  ///< of these, those that answered false
    std::uint64_t gaps = 0;            ///< moments after which reports may be missing, connects included
    std::uint64_t resyncs = 0;         ///< messages that marked all mirrors for a new fetch
    std::uint64_t queued = 0;          ///< reports that wait for their decoders now
};

/// Sums since the plug-in was loaded.
struct SessionStatus {
    std::uint64_t unauthorized = 0;  ///< requests and streams that the device refused for their token
    std::uint64_t loginsAsked = 0;   ///< times that the application was asked to log in
    std::uint64_t resent = 0;        ///< requests that were sent once more with a new token
};

/// Found from the host's load on, works whether or not the channel and the receiver run. Any thread.
class ICommStatus {
public:
    virtual ~ICommStatus() = default;

    virtual ChannelStatus channel() const = 0;
    virtual ReceiverStatus receiver() const = 0;
    virtual SessionStatus session() const = 0;

    /// How the application is asked to log in, which it then does in its own time. Set before the host starts. `ask` is
    /// called by a requester, the stream's reader or the decoder thread, by none with a lock of this plug-in's held,
    /// and must not wait for the login. Unset nobody is asked, and no request waits for a new token. What it uses must
    /// outlive the host's stop.
    virtual void onLoginNeeded(std::function<void()> ask) = 0;
    /// One observer, which must outlive the host's stop. Set, or removed with null, before the host starts; removed
    /// later it may still be in a call.
    virtual void observe(ICommObserver* observer) = 0;
};

}  // namespace lcdcomm
