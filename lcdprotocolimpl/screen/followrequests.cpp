#include "lcdprotocolimpl/screen/followrequests.h"

#include "lcdprotocolimpl/core/report.h"

namespace LCD::ProtocolImpl {

bool decodeScreenFTBFRZFollow(const std::string& body, s_ScreenFollow& out) {
    return decodeReport(body, out, "screen ftb freeze follow");
}

}  // namespace LCD::ProtocolImpl
