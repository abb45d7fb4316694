#include <fmt/format.h>

#include <map>
#include <nlohmann/json.hpp>

#include "panel/commands.h"
#include "panel/output.h"

namespace panel {

using nlohmann::json;

namespace {

/// What became of a change.
struct Result {
    bool taken = false;
    Sent sent = {};  ///< without a name when the component itself refused it
};

/// Filled by the sampling thread.
class Results {
public:
    SetResult callback(std::size_t change) {
        return [this, change, asked = Clock::now()](bool taken) {
            const Sent sent = Traffic::lastSent();
            {
                const std::lock_guard lock(mutex_);
                all_[change] = {taken, sent.end >= asked ? sent : Sent()};
            }
            changed_.notify_all();
        };
    }
    /// The results so far, once that of `change` is there or `deadline` has come.
    std::map<std::size_t, Result> await(std::size_t change, Clock::time_point deadline) {
        std::unique_lock lock(mutex_);
        changed_.wait_until(lock, deadline, [&] { return all_.count(change) != 0; });
        return all_;
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::map<std::size_t, Result> all_;
};

std::string textOf(const Result& result) {
    const Sent& sent = result.sent;
    if (sent.name.empty()) {
        return "the component refused it and sent nothing";
    }
    return fmt::format("{}, {}, {:.1f} ms{}", sent.name, sent.how,
                       std::chrono::duration<double, std::milli>(sent.took).count(), result.taken ? "" : ": not taken");
}

}  // namespace

bool runSet(const CommandOptions& options, const std::string& componentName, const std::string& kindName,
            const std::string& keyText, const std::vector<std::string>& values) {
    const Component& component = componentNamed(componentName);
    const Kind& kind = kindNamed(component, kindName);
    if (!kind.parse || component.set == nullptr) {
        throw BadInput(fmt::format("{} {} can't be set: \"lcdpanel list {}\" shows what can", component.name, kind.name,
                                   component.name));
    }
    const std::any key = keyText.empty() ? std::any(-1) : keyOf(component, kind, keyText);
    std::vector<std::any> changes;
    std::transform(values.begin(), values.end(), std::back_inserter(changes), kind.parse);

    Results results;
    Session session(options.session);
    session.start();
    session.login(options.timeout);
    for (std::size_t i = 0; i < changes.size(); ++i) {
        session.set(component, kind, "set", std::any_cast<int>(key), changes[i], results.callback(i));
    }
    changes.clear();
    // Changes are served in their order, so what has no result when the last one has it was merged into a later one.
    const auto all = results.await(values.size() - 1, Clock::now() + options.timeout);
    const bool ended = all.count(values.size() - 1) != 0;
    Output out;
    bool taken = true;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const auto found = all.find(i);
        const bool merged = found == all.end() && ended;
        const std::string text = found != all.end() ? textOf(found->second)
                                 : merged           ? "merged into a later one"
                                                    : "nothing came back in time: the component takes no such change, "
                                                      "or the device is slow";
        taken = taken && (merged || (found != all.end() && found->second.taken));
        out.line(options.json ? json{{"change", json::parse(values[i])},
                                     {"merged", merged},
                                     {"taken", found != all.end() && found->second.taken},
                                     {"what", text}}
                                    .dump()
                              : fmt::format("{}: {}", values[i], text));
    }
    return taken;
}

}  // namespace panel
