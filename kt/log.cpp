#include "kt/log.h"

namespace KT {

void writeLine(spdlog::level::level_enum level, const LogSite& site, fmt::string_view text,
               fmt::format_args arguments) {
    spdlog::logger& logger = *SpdlogApplication::instance().logger();
    if (!logger.should_log(level)) {
        return;
    }
    fmt::memory_buffer line;
    fmt::vformat_to(fmt::appender(line), text, arguments);
    fmt::format_to(fmt::appender(line), " \n //{}:{}()#{}.", site.file, site.function, site.line);
    logger.log(level, spdlog::string_view_t(line.data(), line.size()));
}

}  // namespace KT
