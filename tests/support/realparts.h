// The real host, channel and receiver with the plug-in in them, against a simulated device in the same process.
#pragma once

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>

#include "panel/session.h"
#include "panel/simcontrol.h"
#include "tests/support/inbox.h"
#include "tests/support/processguard.h"

namespace lcdtest {

/// The deliveries of one kind, as JSON. Lives longer than the session: a delivery itself would not, since what releases
/// it is unloaded with the plug-in.
class JsonInbox {
public:
    panel::Delivery callback(const panel::Kind& kind) {
        return [this, &kind](const std::any& payload) { add(nlohmann::json::parse(kind.print(payload))); };
    }
    void add(nlohmann::json value) {
        monitor_.change([&] { all_.push_back(std::move(value)); });
    }
    bool waitFor(std::size_t count) const {
        return monitor_.waitUntil([&] { return all_.size() >= count; });
    }
    bool waitUntilLast(const nlohmann::json& value) const {
        return monitor_.waitUntil([&] { return !all_.empty() && all_.back() == value; });
    }
    std::size_t count() const {
        return monitor_.read([&] { return all_.size(); });
    }
    nlohmann::json last() const {
        return monitor_.read([&] { return all_.empty() ? nlohmann::json() : all_.back(); });
    }

private:
    Monitor monitor_;
    std::vector<nlohmann::json> all_;
};

/// Starts logged in, with the stream of reports open, and leaves nothing behind.
class RealParts {
public:
    RealParts() : sim(session.deviceUrl()) {
        session.user().registerRequestCallBack(
            "test", LCD::MemoryCache::IUser::RequestCBType::TokenChanged, [this](const std::any& payload) {
                tokens.add(*std::any_cast<const std::shared_ptr<std::string>&>(payload));
            });
    }

    void start() {
        session.start();
        login();
        ASSERT_TRUE(eventually([this] { return session.status().receiver().connected; }));
    }
    void login() {
        const std::size_t before = tokens.count();
        session.user().asyncLogin();
        ASSERT_TRUE(tokens.waitFor(before + 2));
    }

    static const panel::Kind& kindOf(const std::string& component, int value = 1) {
        return *panel::componentNamed(component).kind(value);
    }
    void subscribe(const std::string& component, int kind, JsonInbox& inbox) {
        session.subscribe(panel::componentNamed(component), kindOf(component, kind), "test",
                          inbox.callback(kindOf(component, kind)));
    }
    /// What a request of its own is told.
    nlohmann::json ask(const std::string& component, int kind = 1) {
        JsonInbox inbox;
        session.get(panel::componentNamed(component), kindOf(component, kind), "test",
                    inbox.callback(kindOf(component, kind)));
        EXPECT_TRUE(inbox.waitFor(1)) << component << " " << kind;
        return inbox.last();
    }
    void set(const std::string& component, int kind, const std::string& value, Results& results) {
        session.set(panel::componentNamed(component), kindOf(component, kind), "test", -1,
                    kindOf(component, kind).parse(value), results.callback());
    }

    ProcessGuard guard;
    JsonInbox tokens;
    panel::Session session{{}};
    panel::SimControl sim;
};

}  // namespace lcdtest
