#include "lcdprotocolimpl/core/query.h"

namespace LCD::Comm {

std::string QueryStringTypeToString(const QueryPairs& pairs) {
    std::string text;
    for (const auto& [key, value] : pairs) {
        text.append(text.empty() ? "?" : "&").append(key).append("=").append(value);
    }
    return text;
}

}  // namespace LCD::Comm
