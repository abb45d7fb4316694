#include "lcdprotocolimpl/core/topic.h"

#include <string_view>

namespace LCD::ProtocolImpl {

std::string topicHeader(const KT::LogSite& site) {
    constexpr std::string_view kEnding = "requests.cpp";
    std::string_view topic = site.file;
    if (topic.size() > kEnding.size() && topic.substr(topic.size() - kEnding.size()) == kEnding) {
        topic.remove_suffix(kEnding.size());
    }
    return std::string(topic).append(".h");
}

}  // namespace LCD::ProtocolImpl
