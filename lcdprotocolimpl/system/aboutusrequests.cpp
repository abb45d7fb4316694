#include "lcdprotocolimpl/system/aboutusrequests.h"

#include "lcdprotocolimpl/core/request.h"

namespace LCD::ProtocolImpl {

bool getAboutUs(Comm::IHttpChannel* channel, s_AboutUs& out) { return Request(channel, "/zelto/v1/custom").get(out); }

}  // namespace LCD::ProtocolImpl
