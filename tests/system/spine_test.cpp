// The way through the whole house: host, channel, receiver, plug-in, simulated device.
#include <gtest/gtest.h>

#include "platform/ktp/knownsettings.h"
#include "tests/support/logcapture.h"
#include "tests/support/realparts.h"

namespace {

using namespace lcdtest;
using nlohmann::json;

TEST(Spine, everyChangeThatComponentsTakeGoesToTheDevice) {
    const struct {
        const char* component;
        int kind;
        const char *change, *pointer;
        json becomes;
    } changes[] = {
        {"SwitchMode", 1, R"({"enable":2})", "/screen/global/swap/enable", 2},
        {"TransitionPreview", 1, R"({"enable":1})", "/screen/global/transition-preview/enable", 1},
        {"SwitchEffect", 1, R"({"switchEffect":{"time":900,"type":3,"wipe":{"image":4,"posX":1}}})",
         "/screen/global/switch-effect/switchEffect/wipe/time", 900},
        {"SwitchEffect", 2, R"({"type":3})", "/screen/global/switch-effect/switchEffect/time", 900},
        {"Node", 6, R"({"id":9})", "/node/detail/virtualId", 9},
        {"Node", 16, R"({"nodeId":1,"mode":2})", "/node/detail/mvr/mode", 2},
        {"Node", 17, R"({"nodeId":1,"followPreset":0})", "/node/detail/aux/followPreset", 0},
        {"Node", 18, R"({"mode":5})", "/node/detail/deviceLayerMode/mode", 5},
        {"Node", 3, R"([{"masterSN":"EX4K16-000117","slaveSN":[]}])", "/node/detail/deviceBackup/slave", json::array()},
        {"Node", 4, R"([{"masterSN":"EX4K16-000117","slaveSN":["EX4K16-000118"]}])",
         "/node/detail/deviceBackup/slave/0/sn", "EX4K16-000118"},
        {"PresetSetting", 2, R"({"namePrefix":"New","presetIdObj":{"id":4}})", "/preset/list/3/presetId", 4},
        {"PresetSetting", 5, R"({"presetId":4,"general":{"name":"Fourth"}})", "/preset/list/3/general/name", "Fourth"},
        {"PresetSetting", 3, R"({"presetId":4,"sceneType":0})", "/preset/currentPresetId", 4},
        {"PresetSetting", 4, R"([{"presetId":4}])", "/preset/list/3/presetId", 5},
        {"ScreenTake", 2, R"({"direction":0})", "/layers/list/0/layerIdObj/sceneType", 1},
        {"ScreenDetailTake", 2, R"([{"screenId":1,"direction":0}])", "/layers/list/0/layerIdObj/sceneType", 0},
        {"ScreenTake", 1, R"({"direction":0,"effectSelect":0,"switchEffect":{"time":20,"type":1}})",
         "/layers/list/0/layerIdObj/sceneType", 1},
        {"ScreenDetailTake", 1,
         R"([{"screenId":1,"direction":0,"effectSelect":0,"switchEffect":{"time":20,"type":1}}])",
         "/layers/list/0/layerIdObj/sceneType", 0},
        {"ScreenDetailTake", 3, R"([{"screenId":1,"percent":30}])", "/screen/list/0/percent", 30},
        {"Node", 7, R"({"nodeId":1,"mode":{"workMode":2,"masterSlave":0}})", "/node/detail/mode/workMode", 2},
    };
    Results results;
    RealParts real;
    real.start();
    real.openAllPages();
    for (const auto& each : changes) {
        const std::size_t before = results.count();
        real.set(each.component, each.kind, each.change, results);
        ASSERT_TRUE(results.waitFor(before + 1)) << each.change;
        EXPECT_TRUE(results.last()) << each.change;
        const json::json_pointer pointer(each.pointer);
        EXPECT_TRUE(eventually([&] { return real.sim.state().at(pointer) == each.becomes; })) << each.change;
    }
    EXPECT_EQ(real.ask("SwitchEffect", 2), 3);
    EXPECT_TRUE(real.holds(panel::After::traffic));
}

TEST(Spine, aRefusedLoginLeavesTheMirrorsAsTheyAreUntilALaterOneSucceeds) {
    RealParts real;
    LogCapture log;
    real.session.start();
    real.sim.change("/session/password", "another");
    real.session.user().asyncLogin();
    EXPECT_TRUE(eventually([&] { return log.contains("loginName=admin has failed. Response Code="); }));
    EXPECT_EQ(real.session.user().token(), "");
    EXPECT_EQ(real.ask("SwitchMode"), json({{"enable", 0}})) << "the empty mirror is what there is";
    EXPECT_EQ(real.ask("NodeBrief"), json::array());
    EXPECT_TRUE(log.contains("get node list fail"));
    EXPECT_FALSE(real.session.status().receiver().connected);

    real.sim.change("/session/password", "Zk9wUTc4");
    real.session.user().asyncLogin();
    EXPECT_TRUE(eventually([&] { return !real.session.user().token().empty(); }));
    EXPECT_EQ(real.ask("SwitchMode"), json({{"enable", 1}}));
    EXPECT_TRUE(eventually([&] { return real.session.status().receiver().connected; }));
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
