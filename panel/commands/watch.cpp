#include <fmt/format.h>

#include <map>
#include <nlohmann/json.hpp>

#include "panel/commands.h"
#include "panel/deliveries.h"
#include "panel/output.h"

namespace panel {

using nlohmann::json;

namespace {

constexpr const char* kName = "watch";
constexpr std::chrono::milliseconds kPoll{50};

std::vector<const Component*> chosen(const std::vector<std::string>& names) {
    std::vector<const Component*> all;
    for (const std::string& name : names) {
        all.push_back(&componentNamed(name));
    }
    if (names.empty()) {
        for (const Component& each : components()) {
            all.push_back(&each);
        }
    }
    return all;
}

bool isShown(const Kind& kind) { return kind.print && kind.question.empty(); }

class Watch {
public:
    Watch(Session& session, bool asJson) : session_(session), asJson_(asJson) {}

    void subscribe(const Component& component) {
        for (const Kind& kind : component.kinds) {
            if (isShown(kind)) {
                session_.subscribe(component, kind, kName, session_.taking(component, kind, deliveries_.receiver()));
            }
        }
    }

    /// A component tells of nothing before it was asked once.
    void ask(const Component& component) {
        for (const Kind& kind : component.kinds) {
            if (isShown(kind) && kind.mirrored.device) {
                session_.show(component, kind, kName, session_.taking(component, kind, deliveries_.receiver()),
                              keyOf(component, kind, kind.mirrored.key));
            }
        }
    }

    void run(std::chrono::milliseconds duration, ktp::SignalWait& signals) {
        const auto end = Clock::now() + duration;
        while (!signals.waitFor(std::chrono::milliseconds(0)) &&
               (duration == std::chrono::milliseconds(0) || Clock::now() < end)) {
            if (const auto one = deliveries_.next(Clock::now() + kPoll)) {
                tell(*one);
            }
        }
    }

private:
    void tell(const Delivered& one) {
        const double age = std::chrono::duration<double>(one.time - one.origin.time).count();
        if (asJson_) {
            out_.line(json{{"component", one.component->name},
                           {"kind", one.kind->name},
                           {"origin", one.origin.text()},
                           {"request", one.origin.fetch.name},
                           {"age", age},
                           {"payload", json::parse(one.text)}}
                          .dump());
            return;
        }
        std::string& last = last_[one.kind];
        const std::string what = last.empty() ? shortened(one.text) : difference(last, one.text);
        last = one.text;
        const bool failed = !one.origin.fetch.name.empty() && !one.origin.fetch.good;
        out_.event(one.component->name, one.kind->name,
                   fmt::format("{:<14}{:>9}  {}", one.origin.text(), durationText(one.time - one.origin.time), what) +
                       (failed ? fmt::format("  ({}: {})", one.origin.fetch.name, one.origin.fetch.how) : ""),
                   failed ? Tone::bad : Tone::plain);
    }

    Session& session_;
    const bool asJson_;
    Output out_;
    Deliveries deliveries_;
    std::map<const Kind*, std::string> last_;
};

}  // namespace

bool runWatch(const CommandOptions& options, const std::vector<std::string>& names, std::chrono::milliseconds duration,
              ktp::SignalWait& signals) {
    const std::vector<const Component*> watched = chosen(names);
    Session session(options.session);
    Watch watch(session, options.json);
    for (const Component* each : watched) {
        watch.subscribe(*each);
    }
    session.start();
    session.login(options.timeout);
    for (const Component* each : watched) {
        watch.ask(*each);
    }
    watch.run(duration, signals);
    session.stop();
    return true;
}

}  // namespace panel
