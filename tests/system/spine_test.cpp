// The way through the whole house: host, channel, receiver, plug-in, simulated device.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/ktp/knownsettings.h"
#include "tests/support/logcapture.h"
#include "tests/support/realparts.h"

namespace {

using namespace lcdtest;
using nlohmann::json;

struct Place {
    const char* component;
    const char* pointer;
};

// Where the state of each mirror lies in the device.
constexpr Place kMirrors[] = {{"AboutUs", "/custom"},
                              {"SystemDetail", "/system/detail"},
                              {"SwitchEffect", "/screen/global/switch-effect"},
                              {"SwitchMode", "/screen/global/swap"},
                              {"TransitionPreview", "/screen/global/transition-preview"}};

/// So far; the paths are like the pointers.
long fetches(RealParts& real, const std::string& pointer) { return real.sim.requests("GET", "/zelto/v1" + pointer); }

TEST(Spine, theFirstFetchOfEachMirrorEqualsTheDevice) {
    RealParts real;
    real.start();
    const json state = real.sim.state();
    for (const auto& [component, pointer] : kMirrors) {
        EXPECT_EQ(real.ask(component), state.at(json::json_pointer(pointer))) << component;
    }
    for (const auto& [component, pointer] : kMirrors) {
        EXPECT_EQ(fetches(real, pointer), 1) << component;
    }
}

TEST(Spine, reportsKeepTheMirrorsEqual) {
    std::map<std::string, JsonInbox> inboxes;
    JsonInbox active;
    RealParts real;
    for (const auto& [component, pointer] : kMirrors) {
        real.subscribe(component, 1, inboxes[component]);
    }
    real.subscribe("SwitchEffect", 2, active);
    real.start();
    for (const auto& [component, pointer] : kMirrors) {
        real.ask(component);
    }

    real.sim.change("/custom/company/name", "Renamed");
    real.sim.change("/system/detail/freezeAudioFollow", 1);
    real.sim.change("/screen/global/swap/enable", 0);
    real.sim.change("/screen/global/transition-preview/enable", 1);
    real.sim.change("/screen/global/switch-effect/switchEffect/wipe/posX", 77);
    const json state = real.sim.state();
    for (const auto& [component, pointer] : kMirrors) {
        EXPECT_TRUE(inboxes[component].waitUntilLast(state.at(json::json_pointer(pointer))))
            << component << ": " << inboxes[component].last();
        EXPECT_EQ(fetches(real, pointer), std::string(component) == "AboutUs" ? 2 : 1)
            << component << ": about-us alone fetches on its report";
    }

    real.sim.change("/screen/global/switch-effect/switchEffect/type", 5);
    EXPECT_TRUE(active.waitUntilLast(5));
}

TEST(Spine, aChangeGoesToTheDeviceAndComesBackByItsReport) {
    JsonInbox modes;
    JsonInbox effects;
    Results results;
    RealParts real;
    real.subscribe("SwitchMode", 1, modes);
    real.subscribe("SwitchEffect", 1, effects);
    real.start();
    real.set("SwitchMode", 1, R"({"enable":0})", results);
    EXPECT_TRUE(modes.waitUntilLast({{"enable", 0}}));
    ASSERT_TRUE(results.waitFor(1));
    EXPECT_EQ(results.all(), std::vector<bool>{true});
    EXPECT_EQ(real.sim.state().at("/screen/global/swap/enable"_json_pointer), 0);

    const json before = real.ask("SwitchEffect");
    real.set("SwitchEffect", 1, R"({"switchEffect":{"time":900,"type":3,"wipe":{"image":4,"posX":1}}})", results);
    ASSERT_TRUE(effects.waitFor(1));
    json device = real.sim.state().at("/screen/global/switch-effect"_json_pointer);
    // The report moves the time of its own effect; the top of the mirror follows at the next fetch.
    device["switchEffect"]["time"] = before["switchEffect"]["time"];
    device["switchEffect"]["type"] = before["switchEffect"]["type"];
    EXPECT_EQ(effects.last(), device);
    EXPECT_EQ(device.at("/switchEffect/wipe/time"_json_pointer), 900);
}

TEST(Spine, aBurstOfChangesIsMergedAndItsLastOneWins) {
    JsonInbox modes;
    Results results;
    RealParts real;
    real.subscribe("SwitchMode", 1, modes);
    real.start();
    constexpr int kChanges = 400;
    for (int i = 1; i <= kChanges; ++i) {
        real.set("SwitchMode", 1, json{{"enable", i}}.dump(), results);
    }
    EXPECT_TRUE(modes.waitUntilLast({{"enable", kChanges}}));
    EXPECT_EQ(real.sim.state().at("/screen/global/swap/enable"_json_pointer), kChanges);
    EXPECT_LT(real.sim.requests("PUT", "/zelto/v1/screen/global/swap"), kChanges);
}

TEST(Spine, aRefusedLoginLeavesTheMirrorsAsTheyAreUntilALaterOneSucceeds) {
    RealParts real;
    LogCapture log;
    real.session.start();
    real.sim.change("/session/password", "another");
    real.login();
    EXPECT_EQ(real.tokens.last(), "");
    EXPECT_TRUE(log.contains("/zelto/v1/system/auth/login loginName=admin has failed. Response Code="));
    EXPECT_EQ(real.ask("SwitchMode"), json({{"enable", 0}})) << "the empty mirror is what there is";
    EXPECT_FALSE(real.session.status().receiver().connected);

    real.sim.change("/session/password", "Zk9wUTc4");
    real.login();
    EXPECT_NE(real.tokens.last(), "");
    EXPECT_EQ(real.ask("SwitchMode"), json({{"enable", 1}}));
    EXPECT_TRUE(eventually([&] { return real.session.status().receiver().connected; }));
}

TEST(Spine, aClearedTokenMakesAllMirrorsFetchAgain) {
    RealParts real;
    real.start();
    EXPECT_EQ(real.ask("SwitchMode"), json({{"enable", 1}}));
    const std::uint64_t before = real.session.status().channel().requests;
    real.session.user().clearToken();
    // The message that marks the mirrors goes through the message centre's own thread.
    EXPECT_TRUE(eventually([&] {
        real.ask("SwitchMode");
        return real.session.status().channel().requests > before;
    }));
}

/// Asks and changes without pause, so that a stop finds every thread at work.
void makeTraffic(RealParts& real, int round, Results& results) {
    for (const auto& [component, pointer] : kMirrors) {
        for (int i = 0; i < 20 + round; ++i) {
            real.session.get(panel::componentNamed(component), RealParts::kindOf(component), "traffic",
                             [](const std::any&) {});
        }
    }
    for (int i = 0; i < 20 + round; ++i) {
        real.set("TransitionPreview", 1, json{{"enable", i % 2}}.dump(), results);
        real.set("SwitchMode", 1, json{{"enable", i % 2}}.dump(), results);
        real.set("SwitchEffect", 1 + i % 2, i % 2 == 0 ? "{}" : R"({"type":3})", results);
    }
}

TEST(Spine, stopsDuringTraffic) {
    constexpr int kRounds = kSanitized ? 3 : 10;
    for (int round = 0; round < kRounds; ++round) {
        Results results;
        RealParts real;
        real.start();
        makeTraffic(real, round, results);
        const auto start = std::chrono::steady_clock::now();
        real.session.stop();
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(5500));
    }
}

TEST(Spine, hundredsOfStartsLeaveNothingBehind) {
    constexpr int kCycles = kSanitized ? 20 : 200;
    ProcessGuard guard;
    devicesim::Options few;  // so that all its threads have been used when the first measure is taken
    few.threads = 8;
    few.streams = 4;
    const devicesim::Device device(few);
    // The book of numbers sleeps up to a second when it is destroyed; the cycles leave it out.
    std::size_t resident = 0;
    for (int cycle = 0; cycle < kCycles; ++cycle) {
        auto config = ktp::HostConfig::fromFile(LCD_TEST_HOST_FILE);
        std::erase_if(config.components, [](const auto& each) { return each.name == "lcd.memorycacheimpl.sequence"; });
        config.settings.set(ktp::kDeviceUrl, device.url());
        ktp::Host host(config);
        host.start();
        auto* user = host.find<LCD::MemoryCache::IUser>("lcdMemoryCacheUser");
        user->asyncLogin();
        ASSERT_TRUE(eventually([user] { return !user->token().empty(); }));
        host.stop();
        if (cycle <= kCycles / 10) {
            resident = residentBytes();
        }
    }
    if (!kSanitized) {
        EXPECT_LT(residentBytes(), resident + (2 << 20));
    }
}

}  // namespace
