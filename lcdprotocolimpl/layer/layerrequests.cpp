#include "lcdprotocolimpl/layer/layerrequests.h"

#include "lcdprotocolimpl/core/request.h"

namespace LCD::ProtocolImpl {

bool getLayerBriefList(Comm::IHttpChannel* channel, std::vector<s_LayerBrief>& out) {
    return Request(channel, "/zelto/v1/layers/list-thumb").getFilledList<s_LayerBriefPage>(out);
}

}  // namespace LCD::ProtocolImpl
