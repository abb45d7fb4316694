#include "panel/verify.h"

#include <fmt/format.h>

#include <nlohmann/json.hpp>

#include "panel/commands.h"
#include "panel/output.h"

namespace panel {

using nlohmann::json;

namespace {

void tell(Output& out, const Verdict& verdict) {
    const std::string& component = verdict.component->name;
    const std::string& kind = verdict.kind->name;
    if (!verdict.delivered) {
        out.event(component, kind, "no delivery in time", Tone::bad);
        return;
    }
    if (verdict.wrong.empty()) {
        out.event(component, kind, "equal", Tone::good);
    }
    const auto line = [](const Difference& each) {
        return fmt::format("{}: mirror {}, device {}", each.place.empty() ? "all" : each.place,
                           shortened(each.mirror.dump()), shortened(each.device.dump()));
    };
    for (const Difference& each : verdict.wrong) {
        out.event(component, kind, line(each), Tone::bad);
    }
    for (const Verdict::Known& each : verdict.byDesign) {
        out.event(component, kind, fmt::format("{} by design: {}", line(each.difference), each.stale->why),
                  Tone::quiet);
    }
}

json rowOf(const Verdict& verdict) {
    const auto record = [](const Difference& each) {
        return json{{"place", each.place}, {"mirror", each.mirror}, {"device", each.device}};
    };
    json row = {{"component", verdict.component->name},
                {"kind", verdict.kind->name},
                {"delivered", verdict.delivered},
                {"equal", verdict.holds()},
                {"wrong", json::array()},
                {"byDesign", json::array()}};
    for (const Difference& each : verdict.wrong) {
        row["wrong"].push_back(record(each));
    }
    for (const Verdict::Known& each : verdict.byDesign) {
        row["byDesign"].push_back(record(each.difference));
        row["byDesign"].back()["why"] = each.stale->why;
    }
    return row;
}

}  // namespace

bool runVerify(const CommandOptions& options, std::chrono::milliseconds duration, After after,
               ktp::SignalWait& signals) {
    Session session(options.session);
    const SimControl device(session.deviceUrl());
    session.start();
    session.login(options.timeout);
    for (const Component& component : components()) {
        for (const Kind& kind : component.kinds) {
            if (kind.mirrored.device) {
                session.show(
                    component, kind, "verify", [](const std::any&) {}, keyOf(component, kind, kind.mirrored.key));
            }
        }
    }
    signals.waitFor(duration);
    const std::vector<Verdict> verdicts = verify(session, device, options.timeout, after);
    session.stop();
    Output out;
    for (const Verdict& each : verdicts) {
        if (options.json) {
            out.line(rowOf(each).dump());
        } else {
            tell(out, each);
        }
    }
    return allHold(verdicts);
}

}  // namespace panel
