// What is decoded and encoded: texts as a device sends them and the records that they mean.
#pragma once

#include <string>

#include "lcdprotocolimpl/core/response.h"
#include "lcdprotocolimpl/interface/interface.h"
#include "lcdprotocolimpl/layer/layerdetail.h"

namespace bench {

using LayerPage = LCD::ProtocolImpl::s_Response<LCD::ProtocolImpl::s_LayerDetailPage>;
using InterfacePage = LCD::ProtocolImpl::s_Response<LCD::ProtocolImpl::s_InterfaceBriefPage>;
using Report = LCD::ProtocolImpl::s_LayerWindow;

struct Payloads {
    LayerPage page;
    InterfacePage interfaces;
    Report report;

    std::string pageText;
    std::string pageSortedText;  ///< keys in alphabetical order
    std::string pagePrettyText;  ///< indented
    std::string floatText;
    std::string reportText;
};

/// The same in every run.
const Payloads& payloads();

}  // namespace bench
