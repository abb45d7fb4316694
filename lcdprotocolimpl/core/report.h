// The bodies of reports.
#pragma once

#include <string>

#include "lcdprotocolimpl/core/codec.h"
#include "lcdprotocolimpl/core/topic.h"

namespace LCD::ProtocolImpl {

/// Reads a report's body. On false it logs "decode SUBJECT has failed", with the body and the reason.
template <class T>
bool decodeReport(const std::string& body, T& out, const char* subject, KT::LogSite site = KT::LogSite::here(),
                  spdlog::level::level_enum level = spdlog::level::warn) {
    std::string error;
    if (decode(body, out, error)) {
        return true;
    }
    logAt(level, site, "decode {2} has failed. Error Code={0} \n{1}", body, error, subject);
    return false;
}

}  // namespace LCD::ProtocolImpl
