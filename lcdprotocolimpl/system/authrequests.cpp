#include "lcdprotocolimpl/system/authrequests.h"

#include "lcdprotocolimpl/core/request.h"

namespace LCD::ProtocolImpl {

std::string login(Comm::IHttpChannel* channel, const std::string& username, const std::string& password) {
    STAuth session;
    Request(channel, "/zelto/v1/system/auth/login")
        .logSend(SendLog::asReply)
        .logReply(ReplyLog::loginName, username)
        .post(STLogin{username, password}, session);
    return session.token;
}

}  // namespace LCD::ProtocolImpl
