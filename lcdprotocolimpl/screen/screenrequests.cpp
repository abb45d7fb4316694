#include "lcdprotocolimpl/screen/screenrequests.h"

#include "lcdprotocolimpl/core/request.h"

namespace LCD::ProtocolImpl {

bool getScreenList(Comm::IHttpChannel* channel, std::list<s_ScreenBrief>& out) {
    return Request(channel, "/zelto/v1/screen/list-thumb")
        .logReply(ReplyLog::plainForCode)
        .getList<s_ScreenBriefPage>(out);
}

}  // namespace LCD::ProtocolImpl
