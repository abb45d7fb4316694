// The reports that the device pushes, found under "lcdAutoReportReceiver".
#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace LCD::CommChannel {

inline constexpr const char* OBJ_COMMCHANNEL_AUTOREPORTRECEIVER_NAME = "lcdAutoReportReceiver";

/// Who caused a report.
struct AutoReportSource {
    std::string token;          ///< session token of the client whose request caused it
    std::int32_t sequence = 0;  ///< the `sequenceTag` of that request
};

/// Takes in one report. `body` is its JSON text, without envelope. True when the report was taken in.
using DecodeCallback = std::function<bool(const std::string& body, const AutoReportSource& source)>;

class IAutoReportReceiver {
public:
    virtual ~IAutoReportReceiver() = default;

    /// Binds a callback to a report id of the form 0xDDGGII (domain, group, event). An id may have many
    /// callbacks, all of which are called, in the receiver's thread, one report after the other. Nothing is
    /// ever unbound; no callback runs after the receiver got its stop message. Called while components start,
    /// before the receiver itself does.
    virtual void registerDecodeCallback(std::uint32_t reportId, DecodeCallback callback) = 0;
};

}  // namespace LCD::CommChannel
