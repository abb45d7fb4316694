#pragma once

#include <vector>

#include "lcd/comm/ihttpchannel.h"
#include "lcdprotocolimpl/layer/layer.h"

namespace LCD::ProtocolImpl {

/// An empty list counts as a failure.
bool getLayerBriefList(Comm::IHttpChannel* channel, std::vector<s_LayerBrief>& out);

}  // namespace LCD::ProtocolImpl
