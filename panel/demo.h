// A bounded tour of what the plug-in does, which checks what it shows.
#pragma once

#include "panel/session.h"

namespace panel {

/// Takes at most 15 s. True when everything that was shown held. Raises std::runtime_error with one line for a person.
bool runDemo(const SessionOptions& options);

}  // namespace panel
