// How the request functions of a topic name themselves in log lines.
#pragma once

#include <string>

#include "kt/log.h"

namespace LCD::ProtocolImpl {

/// The header of the topic whose file "TOPICrequests.cpp" is `site`'s.
std::string topicHeader(const KT::LogSite& site);

/// A failure, named after the request function at `site`.
template <class... Arguments>
void logFailure(const KT::LogSite& site, fmt::format_string<const Arguments&...> text, const Arguments&... arguments) {
    const std::string header = topicHeader(site);
    KT::log(spdlog::level::warn, KT::LogSite{header, site.function, site.line}, text, arguments...);
}

}  // namespace LCD::ProtocolImpl
