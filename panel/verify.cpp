#include "panel/verify.h"

#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <thread>

namespace panel {

using nlohmann::json;

namespace {

constexpr std::chrono::milliseconds kPause{50};
constexpr std::chrono::milliseconds kSilence{1000};

const Stale* knownAt(const Kind& kind, const std::string& place, After after) {
    for (const Stale& each : kind.mirrored.stale) {
        if ((after == After::traffic || !each.reloadBrings) && placeMatches(place, each.place)) {
            return &each;
        }
    }
    return nullptr;
}

Verdict compared(const Component& component, const Kind& kind, const json& mirror, const json& state, After after) {
    Verdict verdict{&component, &kind, true};
    const Mirrored& mirrored = kind.mirrored;
    const json compared = mirrored.reduced ? mirrored.reduced(mirror) : mirror;
    for (Difference& each : differences(compared, mirrored.device(state, mirror), mirrored.identity)) {
        if (const Stale* const stale = knownAt(kind, each.place, after); stale != nullptr) {
            verdict.byDesign.push_back({std::move(each), stale});
        } else {
            verdict.wrong.push_back(std::move(each));
        }
    }
    return verdict;
}

class Verification {
public:
    Verification(Session& session, const SimControl& device, After after)
        : session_(session), device_(device), after_(after) {}

    Verdict of(const Component& component, const Kind& kind, std::chrono::milliseconds timeout) {
        const auto deadline = Clock::now() + timeout;
        std::optional<Verdict> last;
        while (true) {
            const std::optional<Delivered> one = ask(component, kind, deadline);
            const json state = device_.state();
            if (one) {
                last = compared(component, kind, json::parse(one->text), state, after_);
            } else if (const Verdict none = silent(component, kind, state); none.holds() || !last) {
                last = none;  // what was delivered earlier says more than that the time was up
            }
            if (last->holds() || Clock::now() + kPause >= deadline) {
                return *last;
            }
            std::this_thread::sleep_for(kPause);
        }
    }

private:
    // A reload that fails delivers too.
    std::optional<Delivered> ask(const Component& component, const Kind& kind, Clock::time_point deadline) {
        const auto last = kind.mirrored.silentWhenEmpty ? std::min(deadline, Clock::now() + kSilence) : deadline;
        return session_.ask(component, kind, keyOf(component, kind, kind.mirrored.key), last);
    }

    Verdict silent(const Component& component, const Kind& kind, const json& state) const {
        const bool empty = kind.mirrored.silentWhenEmpty && kind.mirrored.device(state, json()).empty();
        return Verdict{&component, &kind, empty};
    }

    Session& session_;
    const SimControl& device_;
    const After after_;
};

}  // namespace

std::vector<Verdict> verify(Session& session, const SimControl& device, std::chrono::milliseconds timeout,
                            After after) {
    Verification verification(session, device, after);
    std::vector<Verdict> verdicts;
    for (const Component& component : components()) {
        for (const Kind& kind : component.kinds) {
            if (kind.mirrored.device) {
                verdicts.push_back(verification.of(component, kind, timeout));
            }
        }
    }
    return verdicts;
}

bool allHold(const std::vector<Verdict>& verdicts) {
    return std::all_of(verdicts.begin(), verdicts.end(), [](const Verdict& each) { return each.holds(); });
}

std::string textOf(const std::vector<Verdict>& verdicts) {
    std::string text;
    for (const Verdict& each : verdicts) {
        const std::string name = each.component->name + " " + each.kind->name;
        if (!each.delivered) {
            text += name + ": no delivery\n";
        }
        for (const Difference& wrong : each.wrong) {
            text += fmt::format("{} {}: the mirror has {}, the device {}\n", name, wrong.place, wrong.mirror.dump(),
                                wrong.device.dump());
        }
    }
    return text;
}

}  // namespace panel
