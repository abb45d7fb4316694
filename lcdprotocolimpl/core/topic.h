// How the functions of a topic name themselves in log lines.
#pragma once

#include <string>

#include "kt/log.h"

namespace LCD::ProtocolImpl {

/// The file that `site` names: for "TOPICrequests.cpp" the topic's header, any other as it is.
std::string fileNamed(const KT::LogSite& site);

/// A line that names the function at `site`.
template <class... Arguments>
void logAt(spdlog::level::level_enum level, const KT::LogSite& site, fmt::format_string<const Arguments&...> text,
           const Arguments&... arguments) {
    const std::string file = fileNamed(site);
    KT::log(level, KT::LogSite{file, site.function, site.line}, text, arguments...);
}

template <class... Arguments>
void logFailure(const KT::LogSite& site, fmt::format_string<const Arguments&...> text, const Arguments&... arguments) {
    logAt(spdlog::level::warn, site, text, arguments...);
}

}  // namespace LCD::ProtocolImpl
