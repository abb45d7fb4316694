// The real host, channel and receiver with the plug-in in them, against a simulated device in the same process.
#pragma once

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>

#include "panel/session.h"
#include "panel/simcontrol.h"
#include "panel/verify.h"
#include "tests/support/inbox.h"
#include "tests/support/processguard.h"

namespace lcdtest {

/// The deliveries of one kind, as JSON. Lives longer than the session: a delivery itself would not, since what releases
/// it is unloaded with the plug-in.
class JsonInbox : public Kept<nlohmann::json> {
public:
    panel::Delivery callback(const panel::Kind& kind) {
        return [this, &kind](const std::any& payload) { add(nlohmann::json::parse(kind.print(payload))); };
    }
};

/// Starts logged in, with the stream of reports open, and leaves nothing behind.
class RealParts {
public:
    explicit RealParts(const panel::SessionOptions& options = {}) : session(options), sim(session.deviceUrl()) {}

    void start() {
        session.start();
        session.login(kDeadline);
    }
    static const panel::Kind& kindOf(const std::string& component, int value = 1) {
        return *panel::componentNamed(component).kind(value);
    }
    void subscribe(const std::string& component, int kind, JsonInbox& inbox) {
        session.subscribe(panel::componentNamed(component), kindOf(component, kind), "test",
                          inbox.callback(kindOf(component, kind)));
    }
    /// What a request of its own is told.
    nlohmann::json ask(const std::string& component, int kind = 1, const std::any& key = {}) {
        JsonInbox inbox;
        session.get(panel::componentNamed(component), kindOf(component, kind), "test",
                    inbox.callback(kindOf(component, kind)), key);
        EXPECT_TRUE(inbox.waitFor(1)) << component << " " << kind;
        return inbox.last();
    }
    void set(const std::string& component, int kind, const std::string& value, Results& results) {
        session.set(panel::componentNamed(component), kindOf(component, kind), "test", -1,
                    kindOf(component, kind).parse(value), results.callback());
    }

    /// Every mirror is fetched once, so that reports have something to change.
    void openAllPages() { EXPECT_TRUE(holds(panel::After::resync)) << "from the start"; }

    /// What a lost connection leads to.
    void resync() {
        const std::uint64_t before = session.status().receiver().resyncs;
        sim.addFault({{"kind", "cutStream"}});
        ASSERT_TRUE(eventually([&] {
            const auto now = session.status().receiver();
            return now.connected && now.resyncs > before;
        }));
    }

    /// Whether all mirrors become equal to the device in time, but for what may differ by design.
    testing::AssertionResult holds(panel::After after, std::chrono::milliseconds timeout = kDeadline) {
        const auto verdicts = panel::verify(session, sim, timeout, after);
        return panel::allHold(verdicts) ? testing::AssertionSuccess()
                                        : testing::AssertionFailure() << panel::textOf(verdicts);
    }

    ProcessGuard guard;
    panel::Session session;
    panel::SimControl sim;
};

}  // namespace lcdtest
