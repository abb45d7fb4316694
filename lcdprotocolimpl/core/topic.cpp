#include "lcdprotocolimpl/core/topic.h"

#include <string_view>

namespace LCD::ProtocolImpl {

std::string fileNamed(const KT::LogSite& site) {
    constexpr std::string_view kEnding = "requests.cpp";
    std::string_view file = site.file;
    if (!file.ends_with(kEnding)) {
        return std::string(file);
    }
    file.remove_suffix(kEnding.size());
    return std::string(file).append(".h");
}

}  // namespace LCD::ProtocolImpl
