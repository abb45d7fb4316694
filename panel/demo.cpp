#include "panel/demo.h"

#include <fmt/format.h>

#include <algorithm>
#include <atomic>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>

#include "panel/deliveries.h"
#include "panel/output.h"
#include "panel/simcontrol.h"

namespace panel {

namespace {

using nlohmann::json;

constexpr std::chrono::seconds kWholeTour{15};
constexpr std::chrono::seconds kOneStep{3};
constexpr const char* kName = "demo";
constexpr int kBurst = 60;

class Demo {
public:
    explicit Demo(const SessionOptions& options) : session_(options), device_(session_.deviceUrl()) {}

    bool run() {
        out_.heading("The front panel's memory of " + session_.deviceUrl());
        subscribe();
        session_.start();
        login();
        firstFetches();
        deviceReports();
        ownChange();
        otherClient();
        burst();
        lostConnection();
        channel_ = session_.status().channel();
        receiver_ = session_.status().receiver();
        session_.stop();
        summary();
        return failures_ == 0;
    }

private:
    using Expected = std::function<bool(const Delivered&)>;

    void subscribe() {
        for (const Component& component : components()) {
            for (const Kind& kind : component.kinds) {
                if (kind.print && kind.question.empty()) {
                    session_.subscribe(component, kind, kName, taking(component, kind));
                }
            }
        }
    }

    Delivery taking(const Component& component, const Kind& kind) {
        return session_.taking(component, kind, deliveries_.receiver());
    }

    /// Shows deliveries until one is as expected. False, and a failure, when that takes too long.
    bool await(const std::string& what, const Expected& expected) {
        const Clock::time_point deadline = std::min(Clock::now() + kOneStep, end_);
        while (const auto one = deliveries_.next(deadline)) {
            show(*one);
            if (expected(*one)) {
                return true;
            }
        }
        return fail(what + " didn't come in time");
    }

    void show(const Delivered& one) {
        std::string& last = last_[{one.component, one.kind}];
        const bool first = last.empty();
        out_.event(
            one.component->name, one.kind->name,
            fmt::format("{:<13} {}", one.origin.text(), first ? shortened(one.text) : difference(last, one.text)),
            first ? Tone::quiet : Tone::plain);
        last = one.text;
    }

    bool fail(const std::string& what) {
        ++failures_;
        out_.event("", "", what, Tone::bad);
        return false;
    }

    void check(bool held, const std::string& what) {
        if (held) {
            out_.event("", "", what, Tone::good);
        } else {
            fail(what + ": no");
        }
    }

    void tookSince(Clock::time_point start) { latencies_.push_back(Clock::now() - start); }

    void login() {
        out_.heading("Login");
        const auto start = Clock::now();
        session_.login(kOneStep);
        tookSince(start);
        out_.event("User", "TokenChanged", "logged in, the stream of reports is open", Tone::good);
    }

    void firstFetches() {
        out_.heading("First fetch of each component: nothing is asked of the device before a page asks");
        for (const Component& component : components()) {
            const Kind& kind = *std::find_if(component.kinds.begin(), component.kinds.end(), [](const Kind& each) {
                return each.question.empty() ? each.print && !each.onlyTold : each.name == "LayerWindow";
            });
            const auto start = Clock::now();
            session_.show(component, kind, kName, taking(component, kind), keyFor(component, kind));
            if (await(component.name + "'s first delivery",
                      [&](const Delivered& one) { return one.component == &component && one.kind == &kind; })) {
                tookSince(start);
            }
        }
        check(session_.status().channel().failures == 0, "every request was answered");
    }

    /// A question for the component that answers questions: may the first layer go that far?
    std::any keyFor(const Component& component, const Kind& kind) const {
        if (kind.question.empty()) {
            return keyOf(component, kind, kind.mirrored.key);
        }
        const json layer = device_.state().at("/layers/list/0"_json_pointer);
        json window = layer.at("window");
        window.at("x") = 1'000'000;
        return keyOf(component, kind, json{{{"layerId", layer.at("layerId")}, {"window", window}}}.dump());
    }

    /// Changes a place of the device and waits until `component` tells of it.
    void deviceChange(const char* pointer, const json& value, const Component& component) {
        const auto start = Clock::now();
        device_.change(pointer, value);
        const json::json_pointer place(std::string("/") +
                                       std::string(pointer).substr(std::string(pointer).rfind('/') + 1));
        if (await(component.name + "'s report", [&](const Delivered& one) {
                return one.component == &component && json::parse(one.text).value(place, json()) == value;
            })) {
            tookSince(start);
        }
    }

    void deviceReports() {
        out_.heading("Reports: the device changes by itself, the mirrors follow");
        const json state = device_.state();
        const std::string name = state.at("/custom/softwareName"_json_pointer);
        deviceChange("/custom/softwareName", name + " (renamed)", componentNamed("AboutUs"));
        deviceChange("/custom/softwareName", name, componentNamed("AboutUs"));
        const int follow = state.at("/system/detail/ftbAudioFollow"_json_pointer);
        deviceChange("/system/detail/ftbAudioFollow", 1 - follow, componentNamed("SystemDetail"));
    }

    /// Sends a change and waits for the device's answer.
    void set(const Component& component, const Kind& kind, const std::string& value) {
        session_.set(component, kind, kName, -1, kind.parse(value), [this](bool ok) { refused_ += ok ? 0 : 1; });
    }

    void ownChange() {
        out_.heading("A change of the user's: it goes to the device, and its report brings it back");
        const Component& mode = componentNamed("SwitchMode");
        const Kind& kind = mode.kinds.front();
        const int before = enableOf(mode);
        for (const int enable : {1 - before, before}) {
            const auto start = Clock::now();
            set(mode, kind, fmt::format("{{\"enable\":{}}}", enable));
            if (await("the change's report", [&](const Delivered& one) {
                    return one.component == &mode && json::parse(one.text).at("enable") == enable &&
                           one.origin.by == By::ownChange;
                })) {
                tookSince(start);
            }
        }
        check(refused_ == 0, "the device took both changes");
    }

    void otherClient() {
        out_.heading("Another client's change: told from an own one by the report's source");
        const Component& mode = componentNamed("SwitchMode");
        const int before = enableOf(mode);
        const OtherClient other(device_);
        for (const int enable : {1 - before, before}) {
            const auto start = Clock::now();
            other.send("PUT", "/zelto/v1/screen/global/swap", {{"enable", enable}});
            if (await("the other client's change", [&](const Delivered& one) {
                    return one.component == &mode && json::parse(one.text).at("enable") == enable &&
                           one.origin.by == By::otherClient;
                })) {
                tookSince(start);
            }
        }
    }

    /// A change that no report tells of reaches the mirror nonetheless.
    void lostConnection() {
        out_.heading("A lost connection: it heals, and what was missed meanwhile is fetched");
        const std::string name = device_.state().at("/custom/softwareName"_json_pointer);
        const std::string changed = name + " (changed unseen)";
        const auto start = Clock::now();
        device_.addFault({{"kind", "drop"}, {"count", 1}});
        device_.change("/custom/softwareName", changed);
        device_.addFault({{"kind", "cutStream"}});
        if (await("what was missed", [&](const Delivered& one) {
                return one.component->name == "AboutUs" && one.kind->name == "AboutUsChanged" &&
                       json::parse(one.text).at("softwareName") == changed;
            })) {
            check(session_.status().receiver().connects >= 2,
                  "the stream was opened anew, all is up to date after " + durationText(Clock::now() - start));
        }
        device_.removeFaults();
        device_.change("/custom/softwareName", name);
        await("the name as before", [&](const Delivered& one) {
            return one.component->name == "AboutUs" && json::parse(one.text).value("softwareName", "") == name;
        });
    }

    int enableOf(const Component& component) const {
        return json::parse(last_.at({&component, &component.kinds.front()})).at("enable");
    }

    void burst() {
        out_.heading(fmt::format("A burst: {} changes faster than the device answers", kBurst));
        const Component& preview = componentNamed("TransitionPreview");
        const Kind& kind = preview.kinds.front();
        const char* const path = "/zelto/v1/screen/global/transition-preview";
        const long before = device_.requests("POST", path);
        const auto start = Clock::now();
        // Switches to and fro and ends on a value that no other change of the burst carries.
        for (int i = 1; i <= kBurst; ++i) {
            set(preview, kind, fmt::format("{{\"enable\":{}}}", i == kBurst ? 2 : i % 2));
        }
        if (await("the last change's report", [&](const Delivered& one) {
                return one.component == &preview && json::parse(one.text).at("enable") == 2;
            })) {
            tookSince(start);
        }
        const long requests = device_.requests("POST", path) - before;
        check(requests >= 1 && requests < kBurst,
              fmt::format("the sampling thread merged {} changes; requests that the device counted: {}", kBurst,
                          requests));
        set(preview, kind, R"({"enable":0})");
        await("the last report", [&](const Delivered& one) {
            return one.component == &preview && json::parse(one.text).at("enable") == 0;
        });
    }

    void summary() {
        out_.heading("Summary");
        std::sort(latencies_.begin(), latencies_.end());
        const auto at = [this](std::size_t index) {
            return latencies_.empty() ? std::string("-") : durationText(latencies_[index]);
        };
        out_.table({{"requests", std::to_string(channel_.requests)},
                    {"reports", std::to_string(receiver_.reports)},
                    {"deliveries", std::to_string(deliveries_.count())},
                    {"failures", std::to_string(channel_.failures + static_cast<std::uint64_t>(failures_))},
                    {"median latency", at(latencies_.size() / 2)},
                    {"worst latency", at(latencies_.size() - 1)}});
        out_.line("");
        out_.line(failures_ == 0 ? "Everything held." : fmt::format("{} of the checks did not hold.", failures_),
                  failures_ == 0 ? Tone::good : Tone::bad);
    }

    Output out_;
    Session session_;
    SimControl device_;
    const Clock::time_point end_ = Clock::now() + kWholeTour;
    Deliveries deliveries_;
    std::map<std::pair<const Component*, const Kind*>, std::string> last_;
    std::vector<Clock::duration> latencies_;
    lcdcomm::ChannelStatus channel_;
    lcdcomm::ReceiverStatus receiver_;
    std::atomic<int> refused_{0};
    int failures_ = 0;
};

}  // namespace

bool runDemo(const SessionOptions& options) { return Demo(options).run(); }

}  // namespace panel
