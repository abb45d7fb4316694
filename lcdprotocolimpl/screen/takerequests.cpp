#include "lcdprotocolimpl/screen/takerequests.h"

#include "lcdprotocolimpl/core/report.h"
#include "lcdprotocolimpl/core/request.h"

namespace LCD::ProtocolImpl {

bool getScreenTbar(Comm::IHttpChannel* channel, s_Tbar& out) {
    return Request(channel, "/zelto/v1/screen/selected/tbar").logSend(SendLog::failToGet).get(out);
}

bool setScreenTake(Comm::IHttpChannel* channel, std::shared_ptr<s_Take> value) {
    return Request(channel, "/zelto/v1/screen/selected/take").logSend(SendLog::failToSend).put(*value);
}

bool setScreenCut(Comm::IHttpChannel* channel, std::shared_ptr<s_Direction> value) {
    return Request(channel, "/zelto/v1/screen/selected/cut").logSend(SendLog::failToSend).put(*value);
}

bool decodeScreenTake(const std::string& body, s_TakeState& out) { return decodeReport(body, out, "screen take"); }

bool decodeScreenTbar(const std::string& body, s_Tbar& out) { return decodeReport(body, out, "screen tabr"); }

bool decodeScreenCut(const std::string& body, s_Direction& out) { return decodeReport(body, out, "screen cut"); }

bool getScreenDetailTbar(Comm::IHttpChannel* channel, std::vector<s_ScreenDetailTbar>& out) {
    return Request(channel, "/zelto/v1/screen/tbar").logSend(SendLog::failToGet).get(out);
}

bool setScreenDetailTbar(Comm::IHttpChannel* channel, std::shared_ptr<std::vector<s_ScreenDetailTbar>> value) {
    return Request(channel, "/zelto/v1/screen/tbar").logSend(SendLog::failToSend).put(*value);
}

bool setScreenDetailTake(Comm::IHttpChannel* channel, std::shared_ptr<std::vector<s_ScreenDetailTake>> value) {
    return Request(channel, "/zelto/v1/screen/take").logSend(SendLog::failToSend).put(*value);
}

bool setScreenDetailCut(Comm::IHttpChannel* channel, std::shared_ptr<std::vector<s_ScreenDetailDirection>> value) {
    return Request(channel, "/zelto/v1/screen/cut").logSend(SendLog::failToSend).put(*value);
}

bool decodeScreenDetailTake(const std::string& body, s_TakeState& out) {
    return decodeReport(body, out, "screen detail take");
}

bool decodeScreenDetailTbar(const std::string& body, std::vector<s_ScreenDetailTbar>& out) {
    return decodeReport(body, out, "screen detail tabr");
}

bool decodeScreenDetailCut(const std::string& body, std::vector<s_ScreenDetailDirection>& out) {
    return decodeReport(body, out, "screen detail cut");
}

}  // namespace LCD::ProtocolImpl
