#include "lcdprotocolimpl/system/systemdetailrequests.h"

#include "lcdprotocolimpl/core/request.h"

namespace LCD::ProtocolImpl {

bool getSystemDetail(Comm::IHttpChannel* channel, s_SystemDetail& out) {
    return Request(channel, "/zelto/v1/system/detail").withoutQuery().get(out);
}

}  // namespace LCD::ProtocolImpl
