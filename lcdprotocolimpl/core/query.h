// Query strings for log lines.
#pragma once

#include <string>

#include "lcd/comm/ihttpchannel.h"

namespace LCD::Comm {

/// "?a=1&b=2", not percent-encoded, or nothing for no pairs. The channel gets the pairs themselves.
std::string QueryStringTypeToString(const QueryPairs& pairs);

}  // namespace LCD::Comm
