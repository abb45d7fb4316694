#include <fmt/format.h>

#include "panel/commands.h"
#include "panel/output.h"
#include "platform/ktp/host.h"

namespace panel {

bool runConfigCheck(const std::string& file) {
    const std::vector<std::string> mistakes = ktp::HostConfig::mistakesIn(file);
    if (!mistakes.empty()) {
        throw BadInput(fmt::format("{}", fmt::join(mistakes, "\nlcdpanel: ")));
    }
    const auto config = ktp::HostConfig::fromFile(file);
    ktp::Host host(config);
    host.load();  // what the plug-ins' tables lack is known from here on
    host.stop();
    Output().line(fmt::format("{}: no mistakes; {} plug-ins, {} components", file, config.plugins.size(),
                              config.components.size()));
    return true;
}

}  // namespace panel
