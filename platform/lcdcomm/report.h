// A report of the device.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "lcd/commchannel/autoreport.h"
#include "platform/lcdcomm/eventparser.h"

namespace lcdcomm {

struct Report {
    std::uint32_t id = 0;
    std::string epoch;  ///< new at each start of the device
    std::uint64_t number = 0;
    LCD::CommChannel::AutoReportSource source;
    std::string body;
    std::chrono::steady_clock::time_point arrival{};
};

/// The report that an event holds: its id in hexadecimal as the event's name, "EPOCH-NUMBER" as its id, the
/// source as the first line of its data and the body as the rest. None when any of this is wrong.
std::optional<Report> readReport(const StreamEvent& event);

/// Why reports may be missing at this place among the reports.
enum class Gap {
    Connected,  ///< the stream was opened
    NewEpoch,   ///< the device was started anew
    Numbers,    ///< numbers were passed over
    Overflow,   ///< the queue was full
    Refused,    ///< something came that was no report, or none that can be read to its end
};

/// Follows the numbers of the reports, which rise by one within an epoch.
class ReportOrder {
public:
    struct Verdict {
        bool fresh = true;       ///< false for a duplicate and for a number that was overtaken
        std::optional<Gap> gap;  ///< ahead of this report
    };

    Verdict take(const Report& report);
    /// A comment line of the stream, which may tell the number of the last report: "EPOCH-NUMBER".
    std::optional<Gap> takeComment(std::string_view text);

private:
    std::optional<Gap> moveTo(const std::string& epoch, std::uint64_t number, std::uint64_t expected);

    std::string epoch_;
    std::uint64_t last_ = 0;
};

}  // namespace lcdcomm
