// Compares mirrors with their device.
#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "panel/compare.h"
#include "panel/session.h"
#include "panel/simcontrol.h"

namespace panel {

/// What one kind's delivery and the device's state have in common.
struct Verdict {
    const Component* component;
    const Kind* kind;
    bool delivered = false;
    std::vector<Difference> wrong = {};
    struct Known {
        Difference difference;
        const Stale* stale;
    };
    std::vector<Known> byDesign = {};

    bool holds() const { return delivered && wrong.empty(); }
};

enum class After { traffic, resync };

/// Asks every mirror for what it holds and compares it with the device's
/// state, again and again until all is equal or `timeout` has passed: reports may be under way. What stays different is
/// wrong, unless the component leaves it so by design; after a resync only what no reload brings may stay so. The
/// session's thread. Raises std::runtime_error when the device has no `/sim/state`.
std::vector<Verdict> verify(Session& session, const SimControl& device, std::chrono::milliseconds timeout,
                            After after = After::traffic);

bool allHold(const std::vector<Verdict>& verdicts);
/// One line for each difference.
std::string textOf(const std::vector<Verdict>& verdicts);

}  // namespace panel
