#include "devicesim/families/presets.h"

#include <fmt/format.h>

#include <algorithm>
#include <string>

#include "devicesim/actions.h"
#include "devicesim/families/families.h"

namespace devicesim {

namespace {

constexpr int kMostPresets = 512;
constexpr int kOutputBits = 4 | 8 | 16 | 64;  // of an interface's type

void showPresets(Call& call) {
    json data = page(call, call.here());
    data["currentPresetId"] = call.device.state.at("preset").at("currentPresetId");
    call.answer(data);
}

// A page of some presets, as reports have it.
json presetPage(const json& state, json some) {
    return {{"count", some.size()},
            {"page", 1},
            {"totalCount", state.at("preset").at("list").size()},
            {"totalPage", 1},
            {"list", std::move(some)},
            {"currentPresetId", state.at("preset").at("currentPresetId")}};
}

json changedPreset(const Row&, const json& state, const Place& place) {
    return presetPage(state, json::array({state.at(place)}));
}

json renamedPreset(const Row& row, const json& state, const Place& place) {
    json record = recordAt(row, state, place);
    record["presetName"] = record["general"].at("name");
    return record;
}

json playedPreset(const Row&, const json& state, const Place& place) {
    const json& id = state.at(place);
    const json* const preset = recordOf(state.at("preset").at("list"), "presetId", id);
    return {{"presetId", id}, {"sceneType", preset == nullptr ? json(0) : preset->at("presetIdObj").at("sceneType")}};
}

// What the outputs show now.
json presentDisplays(const json& state) {
    json displays = json::array();
    for (const json& interface : state.at("interface").at("list")) {
        const json& display = interface.at("displayInfo");
        const json& type = interface.at("auxiliaryInfo").at("connectorInfo").at("interfaceType");
        if ((type.get<int>() & kOutputBits) != 0 && display.at("sourceType") != 0) {
            displays.push_back({{"sourceType", display.at("sourceType")},
                                {"sourceId", display.at("sourceId")},
                                {"interfaceId", interface.at("interfaceId")}});
        }
    }
    return displays;
}

// {"namePrefix":"Preset","presetIdObj":{"id":9,"sceneType":0,"playType":0}}: one that has this number already
// is overwritten; of several free numbers the lowest is taken if none is given.
void createPreset(Call& call) {
    json& presets = call.device.state["preset"]["list"];
    json idObj = {{"id", 0}, {"sceneType", 0}, {"playType", 0}};
    const json& wanted = member(call.body, "presetIdObj", json::value_t::object);
    const json& prefix = member(call.body, "namePrefix", json::value_t::string);
    requireFit(wanted, idObj, "presetIdObj");
    requireFit(prefix, "", "namePrefix");
    mergeInto(idObj, wanted);
    const int id = idObj["id"] > 0 ? idObj["id"].get<int>() : lowestFree(presets, "presetId");
    if (id > kMostPresets) {
        throw Refusal(Failure::Impossible, fmt::format("presetIdObj.id must be at most {}", kMostPresets));
    }
    idObj["id"] = id;
    const json preset = {{"presetId", id},
                         {"presetIdObj", idObj},
                         {"general", {{"name", fmt::format("{} {}", prefix.get<std::string>(), id)}}},
                         {"displays", presentDisplays(call.device.state)}};
    const auto place = std::find_if(presets.begin(), presets.end(),
                                    [id](const json& present) { return present.at("presetId") >= id; });
    if (place != presets.end() && place->at("presetId") == id) {
        *place = preset;
        json& current = call.device.state["preset"]["currentPresetId"];
        current = current == id ? json(0) : current;
    } else {
        presets.insert(place, preset);
    }
    call.report(presetPage(call.device.state, json::array({preset})));
    call.answer(nullptr);
}

// {"presetId":3,"sceneType":0}
void playPreset(Call& call) {
    json& presets = call.device.state["preset"]["list"];
    const json& sceneType = member(call.body, "sceneType", json::value_t::number_integer);
    json& preset = presets[indexOf(presets, "presetId", call.body)];
    if (judgePreset(call.device.state, preset["presetId"]) != Verdict::Fine) {
        throw Refusal(Failure::Impossible,
                      fmt::format("presetId {} shows a source that has gone", preset["presetId"].dump()));
    }
    preset["presetIdObj"]["sceneType"] = sceneType;
    call.here() = preset["presetId"];
    call.reportChange({Place(std::string(call.row.place))});
    call.answer({{"screenObjFailed", json::array()}, {"screenObjResourceNotEnough", json::array()}});
}

}  // namespace

Verdict judgePreset(const json& state, const json& presetId) {
    const json* const preset = recordOf(state.at("preset").at("list"), "presetId", presetId);
    if (preset == nullptr) {
        return Verdict::NoValue;
    }
    const json& displays = preset->at("displays");
    const bool lost = std::any_of(displays.begin(), displays.end(), [&](const json& display) {
        return isLost(display, state.at("interface").at("list"));
    });
    return lost ? Verdict::NoSource : Verdict::Fine;
}

std::vector<Row> presetRows() {
    return {
        {"GET", "/zelto/v1/preset/list-detail", showPresets, "/preset/list"},
        {"", "", nullptr, "/preset/list/*", "", 0xa2100, changedPreset},
        {"PUT", "/zelto/v1/preset/create-assign", createPreset, "/preset/list", "presetId", 0xa2101, nullptr},
        {"PUT", "/zelto/v1/preset/general", mergeOne, "/preset/list/*/general", "presetId", 0xa2105, renamedPreset},
        {"DELETE", "/zelto/v1/preset", removeEach, "/preset/list", "presetId", 0xa2106, nullptr},
        {"PUT", "/zelto/v1/preset/play", playPreset, "/preset/currentPresetId", "", 0xa2203, playedPreset},
    };
}

}  // namespace devicesim
