// Keeps the device's stream of reports open.
#pragma once

#include <chrono>
#include <cstdint>
#include <stop_token>
#include <string>

#include "platform/lcdcomm/atmostevery.h"
#include "platform/lcdcomm/backoff.h"
#include "platform/lcdcomm/eventparser.h"
#include "platform/lcdcomm/link.h"
#include "platform/lcdcomm/report.h"
#include "platform/lcdcomm/reportqueue.h"
#include "platform/lcdcomm/transfer.h"

namespace lcdcomm {

/// Opens the stream as soon as there is a token, puts its reports in order into the queue, and opens it anew
/// when it ends, breaks or falls silent. A new token leaves a stream that is open alone. Belongs to the
/// thread that runs `read`.
class ReportStream {
public:
    ReportStream(Link& link, ReportQueue& queue);

    /// Reads until `stop`, which breaks off at once.
    void read(const std::stop_token& stop);

private:
    using Clock = std::chrono::steady_clock;
    using Milliseconds = std::chrono::milliseconds;

    /// One connection of the stream.
    struct Connection {
        ReportStream& owner;
        EventParser parser;
        Clock::time_point silentAt;                             // when silence has lasted too long
        Clock::time_point openedAt = Clock::time_point::max();  // with the first byte of the stream
        const char* problem = nullptr;                          // why we break it off

        bool isOpen() const { return openedAt != Clock::time_point::max(); }
    };

    /// How long the stream was open.
    Milliseconds readOnce(const Token& token, const std::stop_token& stop);
    bool takeBytes(Connection& connection, std::string_view bytes);
    void takeEvent(const StreamEvent& event);
    void drop(Counter& counter, const char* reason);
    void connected(Connection& connection);
    long status() const;
    const char* refusal() const;
    const char* problemOf(const Connection& connection, CURLcode result) const;
    static std::size_t takeBody(char* bytes, std::size_t size, std::size_t count, void* connection);

    // Fixed.
    Link& link_;
    ReportQueue& queue_;
    const std::string url_;
    const Milliseconds connectTimeout_;
    const Milliseconds silence_;
    const std::size_t largestReport_;
    const std::size_t deepest_;

    Transfer transfer_;
    ReportOrder order_;
    Backoff backoff_;
    OncePerSecond problemLog_;
    OncePerSecond openLog_;
};

}  // namespace lcdcomm
