// What the panel tool can do, one function for each of its commands.
#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "panel/errors.h"
#include "panel/session.h"
#include "panel/verify.h"
#include "platform/ktp/signals.h"

namespace panel {

struct CommandOptions {
    SessionOptions session = {};
    bool json = false;  ///< JSON lines instead of text
    std::chrono::milliseconds timeout{5000};
};

// Each returns whether all went as wanted, and raises std::runtime_error with one line for a person for the rest.

/// Components, kinds and their types.
bool runList(const CommandOptions& options, const std::string& component);
bool runGet(const CommandOptions& options, const std::string& component, const std::string& kind,
            const std::string& key);
/// `values` are sent one right after the other, so that the component may merge them.
bool runSet(const CommandOptions& options, const std::string& component, const std::string& kind,
            const std::string& key, const std::vector<std::string>& values);
/// Until a signal ends it, or after `duration` unless that is 0.
bool runWatch(const CommandOptions& options, const std::vector<std::string>& components,
              std::chrono::milliseconds duration, ktp::SignalWait& signals);
/// Follows the device's reports for `duration` first, or until a signal.
bool runVerify(const CommandOptions& options, std::chrono::milliseconds duration, After after,
               ktp::SignalWait& signals);
bool runConfigCheck(const std::string& file);

}  // namespace panel
