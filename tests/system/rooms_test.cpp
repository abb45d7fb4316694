// What the components of a family make of each other's reports.
#include <gtest/gtest.h>

#include "lcd/memorycache/ilayerbrief.h"
#include "tests/support/realparts.h"

namespace {

using namespace lcdtest;
using nlohmann::json;

constexpr int kSelected = 8;
constexpr int kLayers = 7;
constexpr int kAllTypes = -1;

TEST(Rooms, anAppliedPresetNamesThePanelsOwnRequester) {
    JsonInbox applied;
    Results results;
    RealParts real;
    real.subscribe("PresetSetting", 3, applied);
    real.start();
    real.openAllPages();
    real.set("PresetSetting", 3, R"({"presetId":2,"sceneType":0})", results);
    ASSERT_TRUE(applied.waitFor(1));
    EXPECT_EQ(applied.last()[0], "test");
    real.set("PresetSetting", 3, R"({"presetId":4,"sceneType":0})", results);
    ASSERT_TRUE(results.waitFor(2) && applied.waitFor(2)) << "a refusal tells anew what is";
    EXPECT_EQ(results.all(), (std::vector<bool>{true, false})) << "there is no such preset";
    panel::OtherClient(real.sim).send("PUT", "/zelto/v1/preset/play", {{"presetId", 1}, {"sceneType", 0}});
    ASSERT_TRUE(applied.waitFor(3));
    EXPECT_EQ(applied.last()[0], "") << "another panel's";
    EXPECT_EQ(applied.last()[1]["presetId"], 1);
    EXPECT_TRUE(real.holds(panel::After::traffic));
}

TEST(Rooms, aSelectedLayerIsFollowedByItsIdentity) {
    RealParts real;
    real.start();
    real.openAllPages();
    const auto selected = [&] { return real.ask("LayerBrief", kSelected, -1)["layerId"]; };
    auto& layers = real.session.find<LCD::MemoryCache::ILayerBrief>("lcdMemoryCacheLayerBrief");
    layers.setSelectedLayer({1, {1, 1, 0, 1, 2}});
    ASSERT_EQ(real.ask("LayerBrief", kLayers, kAllTypes)[0]["layerIdObj"],
              json({{"id", 1}, {"type", 1}, {"sceneType", 0}, {"attachScreenId", 1}, {"attachScreenType", 2}}));
    real.sim.send("PUT", "/sim/layers/number", R"([{"layerId":1,"newLayerId":2},{"layerId":2,"newLayerId":1}])");
    EXPECT_TRUE(eventually([&] { return selected() == 2; }));
    real.sim.send("DELETE", "/sim/layers", R"([{"layerId":2}])");
    real.sim.send("PUT", "/sim/zelto/v1/node/mode", R"({"nodeId":1,"mode":{"workMode":3,"masterSlave":0}})");
    EXPECT_TRUE(eventually([&] { return real.ask("LayerBrief", kLayers, kAllTypes).empty(); }));
    EXPECT_EQ(selected(), 2) << "a later list may bring it back";
}

TEST(Rooms, aTakeoverMakesAllMirrorsStale) {
    RealParts real;
    real.start();
    real.openAllPages();
    EXPECT_EQ(real.ask("ScreenBrief", 4), json({1, 0})) << "the status that the host's file gives for work mode 1";
    const auto fetches = [&] { return real.sim.requests("GET", "/zelto/v1/custom"); };
    const long before = fetches();
    real.sim.change("/node/backup/stepMs", 1);
    real.sim.send("DELETE", "/sim/zelto/v1/node/backup", R"([{"masterSN":"EX4K16-000117","slaveSN":[]}])");
    real.sim.send("PUT", "/sim/zelto/v1/node/backup", R"([{"masterSN":"EX4K16-000118","slaveSN":["EX4K16-000117"]}])");
    EXPECT_TRUE(eventually([&] {
        real.ask("AboutUs");
        return fetches() > before;
    }));
    EXPECT_TRUE(real.holds(panel::After::traffic));
}

// The states of the verdicts; of a timing's whether its connector carries that much.
std::string verdicts(RealParts& real, int kind, const char* question) {
    const json answer = real.ask("Assess", kind, RealParts::kindOf("Assess", kind).parseQuestion(question));
    std::string states;
    for (const json& each : answer.is_array() ? answer : json::array({answer})) {
        states += each.contains("state")                                ? each["state"].dump()
                  : each.at("currentBandwidth") <= each["maxBandwidth"] ? "fits"
                                                                        : "exceeds";
    }
    return states;
}

TEST(Rooms, everyQuestionIsAnsweredFromTheDevicesState) {
    RealParts real;
    real.start();
    const json before = real.sim.state();
    // In the order of the kinds, which are numbered from one.
    const std::pair<const char*, const char*> questions[] = {
        {R"([{"interfaceId":21,"tagName":"width","colorSpace":0,"colorDepth":8,
              "thumbTiming":{"frame":60,"width":3840,"height":2160}}])",
         "exceeds"},
        {R"([{"interfaceId":21,"tagName":"width","colorSpace":0,"colorDepth":8,
              "timing":{"refresh":60,"horizontal":{"totalTime":2200},"vertical":{"totalTime":1125}}}])",
         "fits"},
        {R"([{"layerId":1,"window":{"width":9,"height":9,"x":-1,"y":0}},{"layerId":77}])", "41"},
        {R"([{"layerId":9,"enable":1}])", "0"},
        {R"([{"layerId":1,"source":{"general":{"sourceId":21,"sourceType":1}}}])", "2"},
        {R"([{"layerId":1,"aspectRatio":9,"locked":0}])", "5"},
        {R"([{"layerId":1,"general":{"capacity":12}}])", "3"},
        {R"([{"layerId":1,"cutout":{"enable":1}},{"layerId":2,"cutout":{"enable":1}},
             {"layerId":3,"cutout":{"enable":1}}])",
         "003"},
        {R"([{"interfaceId":1,"sourceList":[{"id":99}]}])", "22"},
        {R"({"nodeId":1,"subcards":[{"slotId":3,"connectors":[{"index":2,"workMode":2,"capacityMode":1}]}]})",
         "0200000"},
        {R"({"layerId":1,"mode":9})", "5"},
        {R"({"presetId":4,"sceneType":0})", "5"},
    };
    int kind = 0;
    for (const auto& [question, states] : questions) {
        EXPECT_EQ(verdicts(real, ++kind, question), states) << question;
    }
    EXPECT_EQ(real.sim.state(), before);
}

}  // namespace
