// Questions ahead of a change: what would come of it. Nothing changes, nothing is reported. State 0 is fine.
#include <string>
#include <vector>

#include "devicesim/actions.h"
#include "devicesim/families/families.h"
#include "devicesim/families/layerrules.h"
#include "devicesim/families/presets.h"
#include "devicesim/families/subcards.h"

namespace devicesim {

namespace {

json verdictOn(const json& layerId, Verdict verdict) {
    return {{"layerId", layerId}, {"state", static_cast<int>(verdict)}};
}

void answerVerdicts(Call& call, const json& records, Judge judge) {
    const std::vector<Verdict> verdicts = tryRecords(call, records, judge);
    json data = json::array();
    for (std::size_t i = 0; i < verdicts.size(); ++i) {
        data.push_back(verdictOn(records[i]["layerId"], verdicts[i]));
    }
    call.answer(data);
}

template <Judge judge>
void assess(Call& call) {
    answerVerdicts(call, call.body, judge);
}

void assessAspectRatio(Call& call) { answerVerdicts(call, nestedAspectRatios(call.body), judgeAspectRatio); }

void assessScaleMode(Call& call) { answerVerdicts(call, json::array({call.body}), judgeScaleMode); }

// The layers that show one of these interfaces.
bool shows(const json& layer, const json& interfaceId) {
    const json& source = layer.at("source").at("general");
    return source.at("sourceType") == kInterfaceSource && source.at("sourceId") == interfaceId;
}

// [{"interfaceId":10,"templateId":1,"sourceList":[{"id":1,...}]}]: the verdict goes to the layers that show the
// mosaic, to none (-1) if there aren't any.
void assessMosaic(Call& call) {
    requireKind(call.body, json::value_t::array, "the body");
    const json& state = call.device.state;
    const json& interfaces = state.at("interface").at("list");
    json data = json::array();
    for (const json& mosaic : call.body) {
        const json& interfaceId = member(mosaic, "interfaceId", json::value_t::number_integer);
        const json& sources = member(mosaic, "sourceList", json::value_t::array);
        Verdict verdict = inputOf(interfaces, interfaceId) == nullptr ? Verdict::NoSource : Verdict::Fine;
        for (const json& source : sources) {
            if (inputOf(interfaces, member(source, "id", json::value_t::number_integer)) == nullptr) {
                verdict = Verdict::NoSource;
            }
        }
        if (verdict == Verdict::Fine && sources.size() > state.at("interface").at("limits").at("mosaicSources")) {
            verdict = Verdict::NoCapacity;
        }
        const std::size_t before = data.size();
        for (const json& layer : state.at("layers").at("list")) {
            if (shows(layer, interfaceId)) {
                data.push_back(verdictOn(layer.at("layerId"), verdict));
            }
        }
        if (data.size() == before) {
            data.push_back(verdictOn(-1, verdict));
        }
    }
    call.answer(data);
}

// One verdict for each layer that shows an interface.
void assessSubcards(Call& call) {
    const json& state = call.device.state;
    const Interfaces after = interfacesWith(state, changedCards(state, call.body));
    json data = json::array();
    for (const json& layer : state.at("layers").at("list")) {
        const json& source = layer.at("source").at("general");
        if (source.at("sourceType") != kInterfaceSource) {
            continue;
        }
        const json* const input = inputOf(after.list, source.at("sourceId"));
        const auto capacity = [&] { return input->at("auxiliaryInfo").at("connectorInfo").at("capacity"); };
        data.push_back(verdictOn(layer.at("layerId"), input == nullptr ? Verdict::NoSource
                                                      : capacity() < source.at("connectCapacityNum")
                                                          ? Verdict::NoCapacity
                                                          : Verdict::Fine));
    }
    call.answer(data);
}

// {"presetId":3,"sceneType":0}
void assessPreset(Call& call) {
    const json& id = member(call.body, "presetId", json::value_t::number_integer);
    call.answer({{"state", static_cast<int>(judgePreset(call.device.state, id))}});
}

}  // namespace

std::vector<Row> assessRows() {
    return {
        {"PUT", "/zelto/v1/system/auxiliary/assess/layers-window", assess<judgeWindow>, "/layers/list/*/window",
         "layerId"},
        {"PUT", "/zelto/v1/system/auxiliary/assess/layers-switch", assess<judgeCapacity>, "/layers/list/*/enable",
         "layerId"},
        {"PUT", "/zelto/v1/system/auxiliary/assess/layers-source", assess<judgeSource>, "/layers/list/*/source",
         "layerId"},
        {"PUT", "/zelto/v1/system/auxiliary/assess/layers-aspect-ratio", assessAspectRatio,
         "/layers/list/*/aspectRatio", "layerId"},
        {"POST", "/zelto/v1/system/auxiliary/assess/layer-general", assess<judgeCapacity>, "/layers/list/*/general",
         "layerId"},
        {"PUT", "/zelto/v1/system/auxiliary/assess/layers-cutout", assess<judgeCutout>, "/layers/list/*/cutout",
         "layerId"},
        {"PUT", "/zelto/v1/system/auxiliary/assess/scale-mode", assessScaleMode, "/layers/list/*/scale/mode",
         "layerId"},
        {"PUT", "/zelto/v1/system/auxiliary/assess/mosaic-source", assessMosaic, "/interface/list"},
        {"PUT", "/zelto/v1/system/auxiliary/assess/subcard-mode", assessSubcards, "/node/subcard-mode"},
        {"POST", "/zelto/v1/system/auxiliary/assess/preset/play", assessPreset, "/preset/list"},
    };
}

}  // namespace devicesim
