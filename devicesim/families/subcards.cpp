#include "devicesim/families/subcards.h"

#include <algorithm>

#include "devicesim/actions.h"
#include "devicesim/families/families.h"
#include "devicesim/families/layerrules.h"
#include "devicesim/families/node.h"

namespace devicesim {

namespace {

const Place kPlace("/node/subcard-mode");

// Null if the interface is on no card's connector.
const json* connectorOf(const json& cards, const json& interface) {
    const json& address = interface.at("interfaceIdObj");
    const json* const card = recordOf(cards, "slotId", address.at("slotId"));
    return card == nullptr ? nullptr : recordOf(card->at("connectors"), "index", address.at("connectorId"));
}

void showCards(Call& call) {
    const auto asked = call.request.query.find("nodeId");
    if (asked != call.request.query.end()) {
        requireLocalNode(call.device.state, asked->second);
    }
    show(call);
}

void setCards(Call& call) {
    json& state = call.device.state;
    json cards = changedCards(state, call.body);
    Interfaces interfaces = interfacesWith(state, cards);
    call.here()["subcards"] = std::move(cards);
    state["interface"]["list"] = std::move(interfaces.list);
    state["interface"]["spare"] = std::move(interfaces.spare);
    std::vector<Place> places;
    for (const std::size_t index : settleSources(state["layers"]["list"], state["interface"]["list"])) {
        places.push_back(Place("/layers/list") / index / "source");
    }

    json told = {{"nodeId", call.body["nodeId"]}, {"subcards", json::array()}};
    for (const json& asked : call.body["subcards"]) {
        told["subcards"].push_back(*recordOf(call.here()["subcards"], "slotId", asked["slotId"]));
    }
    call.report(told);
    if (!places.empty()) {
        call.device.reportChange(call.device.table.reporting(0x8110a), places, call.source());
    }
    call.answer(nullptr);
}

}  // namespace

json changedCards(const json& state, const json& request) {
    requireLocalNode(state, textOf(member(request, "nodeId", json::value_t::number_integer)));
    json cards = state.at(kPlace).at("subcards");
    for (const json& asked : member(request, "subcards", json::value_t::array)) {
        json& card = cards[indexOf(cards, "slotId", asked)];
        json& connectors = card["connectors"];
        for (const json& one : member(asked, "connectors", json::value_t::array)) {
            take(connectors[indexOf(connectors, "index", one)], one, "a connector");
        }
    }
    return cards;
}

Interfaces interfacesWith(const json& state, const json& cards) {
    std::vector<json> all = state.at("interface").at("list");
    const json& spare = state.at("interface").at("spare");
    all.insert(all.end(), spare.begin(), spare.end());
    std::sort(all.begin(), all.end(),
              [](const json& a, const json& b) { return a.at("interfaceId") < b.at("interfaceId"); });
    Interfaces interfaces;
    for (json& interface : all) {
        json& info = interface["auxiliaryInfo"]["connectorInfo"];
        const json* const connector = connectorOf(cards, interface);
        const bool works = connector == nullptr || connector->at("workMode") == info["workMode"];
        if (connector != nullptr && works) {
            info["capacity"] = connector->at("capacityMode");
            info["copyInfo"] = connector->at("copyInfo");
        }
        (works ? interfaces.list : interfaces.spare).push_back(interface);
    }
    return interfaces;
}

std::vector<std::size_t> settleSources(json& layers, const json& interfaces) {
    std::vector<std::size_t> changed;
    for (std::size_t i = 0; i < layers.size(); ++i) {
        json& source = layers[i].at("source").at("general");
        const json before = source;
        if (isLost(source, interfaces)) {
            source = {{"sourceId", 0},
                      {"sourceType", 0},
                      {"connectorType", 0},
                      {"sourceName", ""},
                      {"connectCapacityNum", 0}};
        }
        describeSource(source, interfaces);
        if (source != before) {
            changed.push_back(i);
        }
    }
    return changed;
}

std::vector<Row> subcardRows() {
    return {
        {"GET", "/zelto/v1/node/subcard/mode", showCards, "/node/subcard-mode"},
        {"PUT", "/zelto/v1/node/subcard/mode", setCards, "/node/subcard-mode", "", 0x50404},
    };
}

}  // namespace devicesim
