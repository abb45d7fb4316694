// Log lines of the plug-ins: an fmt text, then where it was written.
#pragma once

#include <fmt/format.h>

#include <string_view>
#include <utility>

#include "kt/spdlogapplication.h"

namespace KT {

/// The place that a log line names. As a defaulted argument it captures the caller.
struct LogSite {
    std::string_view file;
    const char* function;
    int line;

    static constexpr LogSite here(const char* path = __builtin_FILE(), const char* function = __builtin_FUNCTION(),
                                  int line = __builtin_LINE()) {
        const std::string_view whole = path;
        return {whole.substr(whole.find_last_of('/') + 1), function, line};
    }
};

/// Writes a line when its level is on. Not a template, so that callers hold no formatting code.
void writeLine(spdlog::level::level_enum level, const LogSite& site, fmt::string_view text, fmt::format_args arguments);

/// Writes `text`, formatted, followed by " \n //FILE:FUNCTION()#LINE.". Any thread.
template <class... Arguments>
void log(spdlog::level::level_enum level, const LogSite& site, fmt::format_string<const Arguments&...> text,
         const Arguments&... arguments) {
    writeLine(level, site, text, fmt::make_format_args(arguments...));
}

}  // namespace KT

#define KT_INFO(...) ::KT::log(::spdlog::level::info, ::KT::LogSite::here(), __VA_ARGS__)
#define KT_WARN(...) ::KT::log(::spdlog::level::warn, ::KT::LogSite::here(), __VA_ARGS__)
#define KT_ERROR(...) ::KT::log(::spdlog::level::err, ::KT::LogSite::here(), __VA_ARGS__)
