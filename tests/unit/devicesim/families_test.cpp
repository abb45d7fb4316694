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
constexpr const char* kMode = "/zelto/v1/node/mode";

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
    std::string reports(std::size_t count) {
        std::string ids;
        for (const Event& event : reader.events(count)) {
            ids += event.id + ' ';
        }
        return ids;
    }
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
    /// The verdicts on a question ahead of a change.
    std::string verdicts(const char* verb, const std::string& question, const char* body) {
        const json data = client.send(verb, "/zelto/v1/system/auxiliary/assess/" + question, body)["data"];
        std::string states;
        for (const json& verdict : data.is_array() ? data : json::array({data})) {
            states += verdict.at("state").dump();
        }
        return states;
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

TEST_F(DeviceFamilies, ARenumberedLayerStaysTheSameLayer) {
    const json speaker = layer(1);
    EXPECT_NE(code("PUT", "/sim/layers/number", R"([{"layerId":1,"newLayerId":5}])"), 0) << "5 is another's";
    EXPECT_EQ(code("PUT", "/sim/layers/number", R"([{"layerId":1,"newLayerId":2},{"layerId":2,"newLayerId":1}])"), 0);
    json renumbered = speaker;
    renumbered["layerId"] = 2;
    EXPECT_EQ(recordIn(kLayers, "layerIdObj", speaker["layerIdObj"]), renumbered);
    EXPECT_EQ(code("POST", "/sim/change", R"({"pointer":"/layers/list/layerId=2/enable","value":0})"), 0);
    EXPECT_EQ(recordIn(kLayers, "layerIdObj", speaker["layerIdObj"]), nullptr) << "closed";
    EXPECT_EQ(code("PUT", "/zelto/v1/layers/switch", R"({"layerId":2,"enable":1})"), 0);
    EXPECT_EQ(reports(4), "81102 8111a 8111a 81102 ") << "one that opens is told whole";
    EXPECT_EQ(json::parse(reader.events(4)[3].body)[0]["layerIdObj"], speaker["layerIdObj"]);
}

TEST_F(DeviceFamilies, AWorkModeHasListsOfItsOwn) {
    const json screens = client.get(kScreens), layers = client.get(kLayers);
    EXPECT_NE(code("PUT", kMode, R"({"nodeId":1,"mode":{"workMode":9}})"), 0);
    EXPECT_EQ(code("PUT", "/zelto/v1/screen/tbar", R"([{"screenId":1,"percent":30}])"), 0);
    EXPECT_EQ(code("PUT", kMode, R"({"nodeId":1,"mode":{"workMode":2}})"), 0);
    EXPECT_EQ(reports(2), "71303 50104 ");
    EXPECT_EQ(reader.events(2)[1].body, R"({"mode":{"masterSlave":0,"workMode":2},"nodeId":1})");
    EXPECT_EQ(recordIn(kScreens, "screenIdObj", screens["list"][0]["screenIdObj"])["screenId"], 6);
    EXPECT_NE(client.get(kLayers), layers);
    EXPECT_EQ(code("PUT", std::string("/sim") + kMode, R"({"nodeId":1,"mode":{"workMode":1}})"), 0);
    EXPECT_EQ(client.get(kScreens), screens);
    EXPECT_EQ(client.get(kLayers), layers);
    EXPECT_EQ(client.get("/zelto/v1/screen/tbar")[0]["percent"], -1) << "no T-bar is under way after it";
}

TEST_F(DeviceFamilies, AConnectorThatChangesItsWorkTakesItsSourcesAway) {
    const char* const change =
        R"({"nodeId":1,"subcards":[{"slotId":3,"connectors":[{"index":2,"workMode":2,"capacityMode":1}]}]})";
    const auto play = [&] { return code("PUT", "/zelto/v1/preset/play", R"({"presetId":3,"sceneType":0})"); };
    EXPECT_EQ(verdicts("PUT", "subcard-mode", change), "0200000") << "of the layers that show an interface";
    EXPECT_EQ(play(), 0);
    EXPECT_EQ(code("PUT", "/zelto/v1/node/subcard/mode", change), 0);
    EXPECT_EQ(recordIn("/zelto/v1/interface/list-thumb", "interfaceId", 10), nullptr);
    EXPECT_NE(recordIn("/zelto/v1/interface/list-thumb", "interfaceId", 12), nullptr);
    EXPECT_EQ(layer(2)["source"]["general"]["sourceType"], 0);
    EXPECT_NE(play(), 0) << "the preset shows it";
    EXPECT_EQ(reports(3), "a2203 50404 8110a ");
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

TEST_F(DeviceFamilies, PresetsThatCannotBeAreRefused) {
    const auto create = [&](int id) {
        const json body = {{"namePrefix", "New"}, {"presetIdObj", {{"id", id}}}};
        return code("PUT", "/zelto/v1/preset/create-assign", body.dump());
    };
    const json before = client.get(kPresets);
    EXPECT_NE(code("PUT", "/zelto/v1/preset/play", R"({"presetId":4,"sceneType":0})"), 0);
    EXPECT_NE(code("DELETE", "/zelto/v1/preset", R"([{"presetId":1},{"presetId":4}])"), 0);
    EXPECT_NE(create(513), 0);
    EXPECT_EQ(client.get(kPresets), before);
    EXPECT_EQ(create(0), 0);
    EXPECT_EQ(recordIn(kPresets, "presetId", 4)["displays"].size(), 4U) << "what the outputs show";
    EXPECT_EQ(create(before["currentPresetId"]), 0);
    EXPECT_EQ(client.get(kPresets)["currentPresetId"], 0) << "overwritten, so no longer current";
    EXPECT_EQ(reports(2), "a2101 a2101 ");
}

TEST_F(DeviceFamilies, ABackupIsMadeStepByStep) {
    const char* const kBackup = "/zelto/v1/node/backup";
    const char* const relation = R"([{"masterSN":"EX4K16-000118","slaveSN":["EX4K16-000117"]}])";
    const json failed = client.send("PUT", kBackup, relation)["data"]["failList"];
    EXPECT_EQ(failed, json({"EX4K16-000118", "EX4K16-000117"})) << "both stand in a relation";
    EXPECT_NE(code("DELETE", kBackup, relation), 0) << "but not in this one";
    EXPECT_EQ(code("DELETE", kBackup, R"([{"masterSN":"EX4K16-000117","slaveSN":[]}])"), 0);
    client.send("POST", "/sim/change", R"({"pointer":"/node/backup/stepMs","value":1})");
    EXPECT_EQ(client.send("PUT", kBackup, relation)["data"]["failList"], json::array());
    EXPECT_THAT(reported("50716", "/state", 2), testing::SizeIs(11));
    EXPECT_THAT(reports(2), testing::StartsWith("50714 50711 50716 "));
    EXPECT_EQ(client.get("/zelto/v1/node/detail")["deviceBackup"]["master"]["ip"], "192.168.10.12");
}

TEST_F(DeviceFamilies, QuestionsAreAnsweredFromTheState) {
    const json before = client.get("/sim/state");
    EXPECT_EQ(verdicts("PUT", "layers-window", R"([{"layerId":1,"window":{"x":1}},{"layerId":77,"window":{}}])"), "41");
    EXPECT_EQ(verdicts("PUT", "layers-switch", R"([{"layerId":9,"enable":1}])"), "0");
    EXPECT_EQ(verdicts("PUT", "layers-source", R"([{"layerId":1,"source":{"general":{"sourceId":21}}}])"), "2");
    EXPECT_EQ(verdicts("PUT", "layers-aspect-ratio", R"([{"layerId":1,"aspectRatio":9,"locked":0}])"), "5");
    EXPECT_EQ(verdicts("POST", "layer-general", R"([{"layerId":1,"general":{"capacity":12}}])"), "3");
    const char* const cutouts = R"([{"layerId":1,"cutout":{"enable":1}},{"layerId":2,"cutout":{"enable":1}},
                                    {"layerId":3,"cutout":{"enable":1}}])";
    EXPECT_EQ(verdicts("PUT", "layers-cutout", cutouts), "003");
    EXPECT_EQ(verdicts("PUT", "scale-mode", R"({"layerId":1,"mode":9})"), "5");
    EXPECT_EQ(verdicts("PUT", "mosaic-source", R"([{"interfaceId":1,"sourceList":[{"id":99}]}])"), "22");
    EXPECT_EQ(verdicts("POST", "preset/play", R"({"presetId":4,"sceneType":0})"), "5");
    const char* const timing = R"([{"interfaceId":21,"tagName":"width","colorSpace":0,"colorDepth":8,
                                    "thumbTiming":{"frame":60,"width":3840,"height":2160}}])";
    const json answer = client.send("POST", "/zelto/v1/interface/thumbtiming-check", timing)["data"][0];
    EXPECT_GT(answer["currentBandwidth"], answer["maxBandwidth"]);
    EXPECT_EQ(client.get("/sim/state"), before);
}

}  // namespace
}  // namespace lcdtest
