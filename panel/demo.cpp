#include "panel/demo.h"

#include <fmt/format.h>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <deque>
#include <map>
#include <mutex>
#include <nlohmann/json.hpp>
#include <optional>
#include <thread>

#include "panel/output.h"
#include "panel/simcontrol.h"

namespace panel {

namespace {

using Clock = std::chrono::steady_clock;
using nlohmann::json;

constexpr std::chrono::seconds kWholeTour{15};
constexpr std::chrono::seconds kOneStep{3};
constexpr const char* kName = "demo";
constexpr int kBurst = 60;

/// One delivery, taken apart in the thread that made it.
struct Delivered {
    const Component* component;
    const Kind* kind;
    std::string text;
    Clock::time_point time;
};

/// Where the plug-in's threads leave what they deliver. The tour's thread takes it.
class Deliveries {
public:
    void add(Delivered one) {
        {
            std::lock_guard lock(mutex_);
            waiting_.push_back(std::move(one));
            ++count_;
        }
        changed_.notify_all();
    }
    /// The next delivery, or nothing when `deadline` comes first.
    std::optional<Delivered> next(Clock::time_point deadline) {
        std::unique_lock lock(mutex_);
        if (!changed_.wait_until(lock, deadline, [this] { return !waiting_.empty(); })) {
            return std::nullopt;
        }
        Delivered one = std::move(waiting_.front());
        waiting_.pop_front();
        return one;
    }
    std::size_t count() const {
        std::lock_guard lock(mutex_);
        return count_;
    }

private:
    mutable std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<Delivered> waiting_;
    std::size_t count_ = 0;
};

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
        burst();
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
                if (kind.print) {
                    session_.subscribe(component, kind, kName, receiverOf(component, kind));
                }
            }
        }
        session_.user().registerRequestCallBack(
            kName, LCD::MemoryCache::IUser::RequestCBType::TokenChanged, [this](const std::any& payload) {
                const bool in = !std::any_cast<const std::shared_ptr<std::string>&>(payload)->empty();
                deliveries_.add({nullptr, nullptr, in ? "in" : "", Clock::now()});
            });
    }

    Delivery receiverOf(const Component& component, const Kind& kind) {
        return [this, &component, &kind](const std::any& payload) {
            deliveries_.add({&component, &kind, kind.print(payload), Clock::now()});
        };
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
        if (one.component == nullptr) {
            return;
        }
        std::string& last = last_[{one.component, one.kind}];
        const bool first = last.empty();
        out_.event(one.component->name, one.kind->name, first ? shortened(one.text) : difference(last, one.text),
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
        session_.user().asyncLogin();
        if (await("a token", [](const Delivered& one) { return one.component == nullptr && !one.text.empty(); })) {
            tookSince(start);
            out_.event("User", "TokenChanged", "logged in", Tone::good);
        }
        waitForStream();
    }

    /// Reports reach the panel once the stream is open.
    void waitForStream() {
        const Clock::time_point deadline = std::min(Clock::now() + kOneStep, end_);
        while (!session_.status().receiver().connected) {
            if (Clock::now() > deadline) {
                fail("the stream of reports wasn't opened in time");
                return;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
    }

    void firstFetches() {
        out_.heading("First fetch of each component: nothing is asked of the device before a page asks");
        for (const Component& component : components()) {
            const Kind& kind = component.kinds.front();
            const auto start = Clock::now();
            session_.get(component, kind, kName, receiverOf(component, kind));
            if (await(component.name + "'s first delivery",
                      [&](const Delivered& one) { return one.component == &component && one.kind == &kind; })) {
                tookSince(start);
            }
        }
        check(session_.status().channel().failures == 0, "every request was answered");
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
        const int before = json::parse(last_.at({&mode, &kind})).at("enable");
        for (const int enable : {1 - before, before}) {
            const auto start = Clock::now();
            set(mode, kind, fmt::format("{{\"enable\":{}}}", enable));
            if (await("the change's report", [&](const Delivered& one) {
                    return one.component == &mode && json::parse(one.text).at("enable") == enable;
                })) {
                tookSince(start);
            }
        }
        check(refused_ == 0, "the device took both changes");
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
