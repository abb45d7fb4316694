#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <nlohmann/json.hpp>

#include "lcd/memorycache/ilayerbrief.h"
#include "lcdprotocolimpl/layer/layer.h"
#include "panel/kind.h"

namespace panel {

using namespace LCD::MemoryCache;
using namespace LCD::ProtocolImpl;
using nlohmann::json;

namespace {

constexpr const char* kAllTypes = "-1";  // a mask
constexpr const char* kSourceReport = "of a report of the source its number and type are taken alone";

// A closed layer stays in the mirror until the next fetch, and takes what reports say of its number, though another
// layer bears that now. So both are left out of the comparison.
bool isHidden(const json& layer, const json& mirror) {
    return layer.at("enable") == 0 || std::any_of(mirror.begin(), mirror.end(), [&](const json& each) {
               return each.at("enable") == 0 && each.at("layerId") == layer.at("layerId");
           });
}

json visible(const json& layers, const json& mirror) {
    json open = json::array();
    std::copy_if(layers.begin(), layers.end(), std::back_inserter(open),
                 [&](const json& layer) { return !isHidden(layer, mirror); });
    return open;
}

json openLayers(const json& state, const json& mirror) { return visible(state.at("layers").at("list"), mirror); }

// What never travels has no JSON form of its own.

std::string idText(const s_LayerUniqueId& id) {
    return fmt::format(R"({{"layerId":{},"layerIdObj":{}}})", id.layerId, toJson(id.layerIdObj));
}

std::string dataText(const s_LayerData& data) {
    return fmt::format(R"({{"layerId":{},"layerIdObj":{},"enable":{},"sourceId":{}}})", data.layerId,
                       toJson(data.layerIdObj), data.enable, data.sourceId);
}

/// A kind whose payload is a `std::shared_ptr<std::any>` around the list.
template <class CB>
Kind deliversList(const char* name, CB value) {
    Kind kind = delivers<std::vector<s_LayerBrief>>(name, value, "when layers come or go");
    kind.delivered = "std::any of " + kind.delivered;
    kind.print = [](const std::any& payload) {
        return toJson(
            std::any_cast<const std::vector<s_LayerBrief>&>(*std::any_cast<const std::shared_ptr<std::any>&>(payload)));
    };
    return told(kind);
}

}  // namespace

std::vector<Component> layerRows() {
    using CB = ILayerBrief::RequestCBType;
    return {component<ILayerBrief>(
        "LayerBrief", "lcdMemoryCacheLayerBrief",
        {mirrors(delivers<std::vector<s_LayerBrief>>("LayersChanged", CB::LayersChanged,
                                                     "the key is a mask of layer types, -1 for all"),
                 {.device = openLayers,
                  .reduced = [](const json& mirror) { return visible(mirror, mirror); },
                  .identity = "layerId",
                  .stale = {{"/*/source/general/sourceName", kSourceReport},
                            {"/*/source/general/connectorType", kSourceReport},
                            {"/*/source/general/connectCapacityNum", kSourceReport}},
                  .key = kAllTypes}),
         delivers<s_LayerData>("LayerSwitchChanged", CB::LayerSwitchChanged, "the key is a layer's number", &dataText),
         neverDelivered("LayerSwitchDone", CB::LayerSwitchDone, "nothing tells of it"),
         deliversList("LayerCreateChanged", CB::LayerCreateChanged),
         deliversList("LayerClearChanged", CB::LayerClearChanged),
         delivers<s_LayerUniqueId>("LayerSelectedUpdated", CB::LayerSelectedUpdated, "", &idText),
         delivers<int>("LayerTypeSelectChanged", CB::LayerTypeSelectChanged),
         delivers<s_LayerUniqueId>("LayerSelectedChanged", CB::LayerSelectedChanged, "", &idText),
         delivers<int>("MOSAICChanged", CB::MOSAICChanged),
         delivers<s_LayerUniqueId>("TypeChanged", CB::TypeChanged,
                                   "the key is a layer's number; nothing for one that isn't there", &idText),
         delivers<int>("MVRLayerSelectedChanged", CB::MVRLayerSelectedChanged),
         delivers<std::pair<std::string, s_LayerTransitionFollow>>(
             "LayerTransFollow", CB::LayerTransFollow, "requester and value; the key is a layer's number", &pairText)},
        {0x81109, 0x50104, 0x50404, 0x8111a, 0x81102, 0x81103, 0x8110a, 0x62203, 0x8112f},
        "/zelto/v1/layers/list-thumb")};
}

}  // namespace panel
