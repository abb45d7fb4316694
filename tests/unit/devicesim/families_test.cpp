// What the simulated device knows of its screens, layers, cards, presets and nodes.
#include <gmock/gmock.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tests/support/devicesimclient.h"

namespace lcdtest {
namespace {

constexpr const char* kLayers = "/zelto/v1/layers/list-thumb";
constexpr const char* kScreens = "/zelto/v1/screen/list-thumb";
constexpr const char* kPresets = "/zelto/v1/preset/list-detail";

struct DeviceFamilies : testing::Test {
    devicesim::Device device{};
    DeviceClient client{device};
    ReportReader reader{device, client.token};

    int code(const char* verb, const std::string& path, const std::string& body) {
        return client.send(verb, path, body)["code"];
    }
    /// The list's record whose member has that value. Null if there is none.
    json recordIn(const char* list, const char* member, const json& value) {
        const json records = client.get(list)["list"];
        const auto found = std::ranges::find_if(records, [&](const json& record) { return record[member] == value; });
        return found == records.end() ? json() : *found;
    }
    json layer(int layerId) { return recordIn(kLayers, "layerId", layerId); }
    /// What the reports of this id have there, up to the first that has `last`.
    std::vector<json> reported(const char* id, const char* pointer, int last) {
        std::vector<json> values;
        for (std::size_t i = 0; (values.empty() || values.back() != last) && reader.events(i + 1).size() > i; ++i) {
            if (const Event event = reader.events(i + 1)[i]; event.id == id) {
                values.push_back(json::parse(event.body).at(json::json_pointer(pointer)));
            }
        }
        return values;
    }
};

TEST_F(DeviceFamilies, AListIsPagedAndChangedWholeOrNotAtAll) {
    const json all = client.get(kScreens)["list"];
    const json page = client.get(std::string(kScreens) + "?page=2&limit=2");
    EXPECT_EQ(page["list"], json(all.begin() + 2, std::min(all.begin() + 4, all.end())));
    EXPECT_EQ(page["totalCount"], all.size());
    EXPECT_EQ(page["totalPage"], (all.size() + 1) / 2);
    EXPECT_EQ(client.get(std::string(kScreens) + "?page=99&limit=2")["count"], 0);

    const json before = client.get("/sim/state");
    for (const char* bad : {R"([{"layerId":1,"window":{"x":0}},{"layerId":77,"window":{"x":0}}])",
                            R"([{"layerId":1,"window":{"x":0}},{"layerId":2}])", R"({"layerId":1,"window":{"x":0}})"}) {
        EXPECT_NE(code("PUT", "/zelto/v1/layers/window", bad), 0) << bad;
    }
    EXPECT_EQ(client.get("/sim/state"), before);
    EXPECT_EQ(code("PUT", "/zelto/v1/layers/window", R"([{"layerId":2,"window":{"x":9}}])"), 0);
    const json window = client.get("/sim/state")["layers"]["list"][1]["window"];
    EXPECT_EQ(window["x"], 9);
    EXPECT_EQ(json::parse(reader.events(1)[0].body), json::array({{{"layerId", 2}, {"window", window}}})) << "whole";
}

TEST_F(DeviceFamilies, ATakeMovesTheTbarToItsEnd) {
    const json programme = layer(1), preview = layer(3);
    const char* const take = R"({"direction":0,"effectSelect":0,"switchEffect":{"time":600,"type":1}})";
    EXPECT_EQ(code("PUT", "/zelto/v1/screen/selected/take", take), 0);
    EXPECT_THAT(reported("71203", "/status", 1), testing::ElementsAre(0, 1));
    const auto percents = reported("71303", "/0/percent", -1);
    EXPECT_GE(percents.size(), 3U);
    EXPECT_TRUE(std::is_sorted(percents.begin(), percents.end() - 1));
    EXPECT_EQ(layer(3)["layerIdObj"]["sceneType"], 0);
    EXPECT_EQ(code("PUT", "/zelto/v1/screen/cut", R"([{"screenId":1,"direction":0}])"), 0);
    EXPECT_EQ(layer(1), programme);
    EXPECT_EQ(layer(3), preview);
    EXPECT_EQ(code("PUT", "/zelto/v1/screen/tbar", R"([{"screenId":1,"percent":30}])"), 0);
    EXPECT_NE(code("PUT", "/zelto/v1/screen/selected/take", take), 0) << "a hand is on the T-bar";
}

TEST_F(DeviceFamilies, ACreatedPresetTakesTheLowestNumberOrReplaces) {
    const auto create = [&](int id) {
        const json body = {{"namePrefix", "New"}, {"presetIdObj", {{"id", id}}}};
        return code("PUT", "/zelto/v1/preset/create-assign", body.dump());
    };
    EXPECT_NE(create(513), 0);
    const json before = client.get(kPresets);
    EXPECT_EQ(create(0), 0);
    EXPECT_EQ(recordIn(kPresets, "presetId", 4)["displays"].size(), 4U) << "what the outputs show";
    EXPECT_EQ(create(before["currentPresetId"]), 0);
    EXPECT_EQ(client.get(kPresets)["currentPresetId"], 0) << "overwritten, so no longer current";
}

}  // namespace
}  // namespace lcdtest
