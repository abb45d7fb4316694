// The local node, and what it knows of the others. The local one is changed here, the others are changed on
// their own devices.
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <utility>

#include "devicesim/actions.h"
#include "devicesim/families/families.h"
#include "devicesim/families/node.h"
#include "devicesim/families/subcards.h"
#include "devicesim/families/take.h"

namespace devicesim {

namespace {

// Families whose list is another one in each work mode. Those of the modes that aren't active wait beside it,
// by the mode's number.
constexpr std::array kByMode = {"screen", "layers"};

// Without a number in the query the local one.
void showDetail(Call& call) {
    const auto asked = call.request.query.find("nodeId");
    for (const json* const node : nodesOf(call.device.state)) {
        if (asked == call.request.query.end() || textOf(node->at("nodeId")) == asked->second) {
            call.answer(*node);
            return;
        }
    }
    throw Refusal(Failure::Unknown, "there is no node " + asked->second);
}

void showList(Call& call) {
    json list = call.here();
    std::array<int, 3> counts{};  // offline, online, abnormal
    for (json& brief : list) {
        for (const json* const node : nodesOf(call.device.state)) {
            if (node->at("nodeId") == brief.at("nodeId")) {
                brief["modelId"] = node->at("modelId");
                brief["name"] = node->at("general").at("name");
            }
        }
        const json& online = brief.at("online");
        ++counts[online == 1 ? 1 : online == 0 ? 0 : 2];
    }
    json data = page(call, list);
    data["offlineNum"] = counts[0];
    data["onlineNum"] = counts[1];
    data["abnormalNum"] = counts[2];
    call.answer(data);
}

// {"nodeId":1,"general":{...}}
json nodeRecord(const Row&, const json& state, const Place& place) {
    return {{"nodeId", state.at("node").at("detail").at("nodeId")}, {place.back(), state.at(place)}};
}

void requireLocal(const Call& call) {
    requireLocalNode(call.device.state, textOf(member(call.body, "nodeId", json::value_t::number_integer)));
}

void mergeLocal(Call& call) {
    requireLocal(call);
    merge(call);
}

void exchangeLists(json& state, const std::string& left, const std::string& entered) {
    for (const char* const family : kByMode) {
        if (!state.at(family).at("modes").contains(entered)) {
            throw Refusal(Failure::Impossible, fmt::format("workMode {}: the device has no such mode", entered));
        }
    }
    for (json& screen : state["screen"]["list"]) {
        screen["percent"] = kAtRest;
    }
    state["screen"]["selected"]["tbar"]["percent"] = kAtRest;
    for (const char* const family : kByMode) {
        json& modes = state[family]["modes"];
        json& list = state[family]["list"];
        modes[left] = std::exchange(list, modes[entered]);
        modes.erase(entered);
    }
    settleSources(state["layers"]["list"], state["interface"]["list"]);
}

// {"nodeId":1,"mode":{"workMode":2,"masterSlave":0}}
void setMode(Call& call) {
    requireLocal(call);
    json& mode = call.here();
    const json& wanted = member(call.body, "mode", json::value_t::object);
    requireFit(wanted, mode, "mode");
    const std::string before = textOf(mode.at("workMode"));
    const std::string after = textOf(wanted.contains("workMode") ? wanted["workMode"] : mode.at("workMode"));
    if (after != before) {
        exchangeLists(call.device.state, before, after);
    }
    mergeInto(mode, wanted);
    call.reportChange({Place(std::string(call.row.place))});
    call.answer(nullptr);
}

}  // namespace

void requireLocalNode(const json& state, const std::string& nodeId) {
    if (nodeId != textOf(state.at("node").at("detail").at("nodeId"))) {
        throw Refusal(Failure::Unknown, fmt::format("nodeId {} isn't this device's own", nodeId));
    }
}

std::vector<json*> nodesOf(json& state) {
    std::vector<json*> nodes = {&state.at("node").at("detail")};
    for (json& other : state["node"].at("others")) {
        nodes.push_back(&other);
    }
    return nodes;
}

std::vector<Row> nodeRows() {
    return {
        {"GET", "/zelto/v1/node/detail", showDetail, "/node/detail", "", 0x50100},
        {"GET", "/zelto/v1/node/list", showList, "/node/list"},
        {"", "", nullptr, "/node/detail/general", "", 0x50102, nodeRecord},
        {"", "", nullptr, "/node/detail/stateInfo", "", 0x50107, nodeRecord},
        {"PUT", "/zelto/v1/node/mode", setMode, "/node/detail/mode", "", 0x50104, nodeRecord},
        {"PUT", "/zelto/v1/node/virtual-id", merge, "/node/detail/virtualId", "", 0x50120, recordAt, "id"},
        {"POST", "/zelto/v1/node/mvr/mode", mergeLocal, "/node/detail/mvr/mode", "", 0x50127, nodeRecord},
        {"POST", "/zelto/v1/node/aux/follow-preset", mergeLocal, "/node/detail/aux/followPreset", "", 0x5013d},
        {"POST", "/zelto/v1/node/device-layer-mode", merge, "/node/detail/deviceLayerMode", "", 0x50141},
    };
}

}  // namespace devicesim
