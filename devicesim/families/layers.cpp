// Layers. A layer is known by its identity, the number that it bears can change. A closed one stays in the
// state, but the lists pass it over.
#include <fmt/format.h>

#include <cmath>
#include <set>
#include <string>

#include "devicesim/actions.h"
#include "devicesim/families/families.h"
#include "devicesim/families/layerrules.h"

namespace devicesim {

namespace {

const Place kList("/layers/list");
constexpr std::uint32_t kCreated = 0x81102;

json& layersOf(Call& call) { return call.device.state.at(kList); }

const json& limits(const Call& call) { return call.device.state.at("layers").at("limits"); }

void showOpen(Call& call) {
    json open = json::array();
    for (const json& layer : layersOf(call)) {
        if (layer.at("enable") != 0) {
            open.push_back(layer);
        }
    }
    call.answer(page(call, open));
}

// Clients that have read a list since a layer was closed don't know it: one that opens is told whole.
void switchLayer(Call& call) {
    const json records = json::array({call.body});
    requireFine(call, records, judgeCapacity);
    const std::size_t index = indexOf(layersOf(call), "layerId", call.body);
    const json& layer = layersOf(call)[index];
    const bool wasOpen = layer.at("enable") != 0;
    mergeRecords(call, records);
    if (!wasOpen && layer.at("enable") != 0) {
        call.device.reportChange(call.device.table.reporting(kCreated), {kList / index}, call.source());
    }
}

void setGeneral(Call& call) {
    requireFine(call, call.body, judgeCapacity);
    mergeEach(call);
}

// Clients name a source; what else there is to say of it the device knows itself.
void setSource(Call& call) {
    requireFine(call, call.body, judgeSource);
    json records = call.body;
    for (json& record : records) {
        json source = layersOf(call)[indexOf(layersOf(call), "layerId", record)].at("source");
        mergeInto(source, record["source"]);
        describeSource(source["general"], call.device.state.at("interface").at("list"));
        record["source"] = source;
    }
    mergeRecords(call, records);
}

void setAspectRatio(Call& call) { mergeRecords(call, nestedAspectRatios(call.body)); }

void setCutout(Call& call) {
    requireFine(call, call.body, judgeCutout);
    mergeEach(call);
}

// The picture of the simulated sources: a gradient from corner to corner.
json colorUnder(const json& position) {
    const auto part = [&position](const char* axis) {
        return static_cast<int>(std::fmod(std::abs(position.at(axis).get<double>()), 256));
    };
    return {{"R", part("x")}, {"G", part("y")}, {"B", (part("x") + part("y")) / 2}};
}

json cursorRecord(const Row& row, const json& state, const Place& place) {
    json record = recordAt(row, state, place);
    record["cursor"]["color"] = colorUnder(record["cursor"].at("pos"));
    return record;
}

void pickColor(Call& call) {
    mergeOne(call);
    const ListPlace place(call.row);
    const std::size_t index = indexOf(layersOf(call), "layerId", call.body);
    call.answer(cursorRecord(call.row, call.device.state, place.of(index)));
}

// {"layerId":4,"safeFrames":[...]}: each gets the lowest number that is free.
void addSafeFrames(Call& call) {
    json& frames = layersOf(call)[indexOf(layersOf(call), "layerId", call.body)].at("safeFrames");
    json all = frames;
    json added = json::array();
    for (const json& wanted : member(call.body, "safeFrames", json::value_t::array)) {
        json frame = call.device.state.at("layers").at("safeFrame");
        requireFit(wanted, frame, "a safe frame");
        mergeInto(frame, wanted);
        frame["id"] = lowestFree(all, "id");
        all.push_back(frame);
        added.push_back(frame);
        if (all.size() > limits(call).at("safeFrames")) {
            throw Refusal(Failure::Impossible, "the layer has no room for more safe frames");
        }
    }
    frames = all;
    call.report(json::array({{{"layerId", call.body["layerId"]}, {"safeFrames", added}}}));
    call.answer(nullptr);
}

void removeSafeFrames(Call& call) {
    json& frames = layersOf(call)[indexOf(layersOf(call), "layerId", call.body)].at("safeFrames");
    json left = frames;
    json gone = json::array();
    for (const json& frame : member(call.body, "safeFrames", json::value_t::array)) {
        left.erase(indexOf(left, "id", frame));
        gone.push_back({{"id", frame["id"]}});
    }
    frames = left;
    call.report(json::array({{{"layerId", call.body["layerId"]}, {"safeFrames", gone}}}));
    call.answer(nullptr);
}

// POST /sim/layers {"layerIdObj":{"attachScreenId":1},"general":{"name":"Logo"}}: what is missing is as in the
// default layer; numbers that are missing are given.
void createLayer(Call& call) {
    json& layers = layersOf(call);
    if (layers.size() >= limits(call).at("layers")) {
        throw Refusal(Failure::Impossible, "the device has no room for more layers");
    }
    json layer = call.device.state.at("layers").at("default");
    layer["layerId"] = lowestFree(layers, "layerId");
    layer["layerIdObj"]["id"] = layer["layerId"];
    const json body = call.body.is_null() ? json::object() : call.body;
    requireFit(body, layer, "the body");
    mergeInto(layer, body);
    for (const json& other : layers) {
        if (other.at("layerId") == layer["layerId"] || other.at("layerIdObj") == layer["layerIdObj"]) {
            throw Refusal(Failure::Impossible, fmt::format("layer {} is there already", layer["layerId"].dump()));
        }
    }
    layers.push_back(layer);
    call.reportChange({kList / (layers.size() - 1)});
    call.answer({{"layerId", layer["layerId"]}});
}

// PUT /sim/layers/number [{"layerId":4,"newLayerId":9}]: the layers stay, their numbers change all at once.
void renumberLayers(Call& call) {
    requireKind(call.body, json::value_t::array, "the body");
    json layers = layersOf(call);
    std::vector<Place> places;
    for (const json& record : call.body) {
        const std::size_t index = indexOf(layersOf(call), "layerId", record);
        layers[index]["layerId"] = member(record, "newLayerId", json::value_t::number_integer);
        places.push_back(kList / index);
    }
    std::set<std::string> numbers;
    for (const json& layer : layers) {
        if (!numbers.insert(textOf(layer["layerId"])).second) {
            throw Refusal(Failure::Impossible, fmt::format("two layers would be {}", layer["layerId"].dump()));
        }
    }
    layersOf(call) = layers;
    call.reportChange(places);
    call.answer(nullptr);
}

}  // namespace

std::vector<Row> layerRows() {
    return {
        {"GET", "/zelto/v1/layers/list-thumb", showOpen, "/layers/list", "layerId", 0, recordAt,
         "layerId layerIdObj general/name source enable transitionFollow"},
        {"GET", "/zelto/v1/layers/list-detail", showOpen, "/layers/list", "layerId"},

        {"PUT", "/zelto/v1/layers/switch", switchLayer, "/layers/list/*/enable", "layerId", 0x8111a},
        {"PUT", "/zelto/v1/layers/general", setGeneral, "/layers/list/*/general", "layerId", 0x81109},
        {"PUT", "/zelto/v1/layers/source", setSource, "/layers/list/*/source", "layerId", 0x8110a},
        {"PUT", "/zelto/v1/layers/window", mergeEach, "/layers/list/*/window", "layerId", 0x8110b},
        {"PUT", "/zelto/v1/layers/zorder", mergeEach, "/layers/list/*/zorder", "layerId", 0x81106},
        {"PUT", "/zelto/v1/layers/select", mergeEach, "/layers/list/*/selected", "layerId", 0x81105},
        {"PUT", "/zelto/v1/layers/aspect-ratio", setAspectRatio, "/layers/list/*/aspectRatio", "layerId", 0x81124},
        {"PUT", "/zelto/v1/layers/crop", mergeEach, "/layers/list/*/crop", "layerId", 0x8110f},
        {"PUT", "/zelto/v1/layers/border", mergeEach, "/layers/list/*/border", "layerId", 0x81112},
        {"PUT", "/zelto/v1/layers/shadow", mergeEach, "/layers/list/*/shadow", "layerId", 0x8110e},
        {"PUT", "/zelto/v1/layers/mask", mergeEach, "/layers/list/*/mask", "layerId", 0x81118},
        {"PUT", "/zelto/v1/layers/audio", mergeOne, "/layers/list/*/audio", "layerId", 0x81114},
        {"PUT", "/zelto/v1/layers/scale-mode", mergeEach, "/layers/list/*/scale/mode", "layerId", 0x8112a},
        {"POST", "/zelto/v1/layers/threed-enable", mergeOne, "/layers/list/*/threeD", "layerId", 0x8112e},
        {"PUT", "/zelto/v1/layers/umd", mergeOne, "/layers/list/*/UMD", "layerId", 0x81113, recordAt, "umd"},
        {"PUT", "/zelto/v1/layers/cutout", setCutout, "/layers/list/*/cutout", "layerId", 0x81110},
        {"PUT", "/zelto/v1/layers/cutout/color", pickColor, "/layers/list/*/cutout/cursor", "layerId", 0x81111,
         cursorRecord},
        {"POST", "/zelto/v1/layers/transition-follow", mergeEach, "/layers/list/*/transitionFollow", "layerId", 0x8112f,
         recordAt, "enable"},
        {"POST", "/zelto/v1/layers/safe-frame/create", addSafeFrames, "/layers/list", "layerId", 0x8112b, nullptr},
        {"POST", "/zelto/v1/layers/safe-frame/delete", removeSafeFrames, "/layers/list", "layerId", 0x8112c, nullptr},

        {"POST", "/sim/layers", createLayer, "/layers/list/*", "layerId", kCreated},
        {"PUT", "/sim/layers/number", renumberLayers, "/layers/list/*", "layerId", kCreated},
        {"DELETE", "/sim/layers", removeEach, "/layers/list", "layerId", 0x81103, nullptr},
    };
}

}  // namespace devicesim
