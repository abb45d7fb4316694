#include "devicesim/families/layerrules.h"

#include <fmt/format.h>

#include <algorithm>

#include "devicesim/actions.h"

namespace devicesim {

namespace {

constexpr int kInputBit = 2;

const json& limit(const json& state, const char* name) { return state.at("layers").at("limits").at(name); }

const char* reasonOf(Verdict verdict) {
    switch (verdict) {
        case Verdict::NoSource:
            return "there is no such source";
        case Verdict::NoCapacity:
            return "the device has no capacity left for it";
        case Verdict::Outside:
            return "the window lies outside of its screen";
        case Verdict::NoValue:
            return "there is no such value";
        case Verdict::Fine:
        case Verdict::NoLayer:
            break;
    }
    return "there is no such layer";
}

Verdict oneOf(const json& value, const json& known) {
    return std::find(known.begin(), known.end(), value) != known.end() ? Verdict::Fine : Verdict::NoValue;
}

const json* screenOf(const json& state, const json& layer) {
    for (const json& screen : state.at("screen").at("list")) {
        if (screen.at("screenIdObj").at("id") == layer.at("layerIdObj").at("attachScreenId") &&
            screen.at("screenIdObj").at("type") == layer.at("layerIdObj").at("attachScreenType")) {
            return &screen;
        }
    }
    return nullptr;
}

}  // namespace

Verdict judgeCapacity(const json& state, const json& layers, const json&) {
    double used = 0;
    for (const json& layer : layers) {
        used += layer.at("enable") != 0 ? layer.at("general").at("capacity").get<double>() : 0;
    }
    return used <= limit(state, "capacity") ? Verdict::Fine : Verdict::NoCapacity;
}

Verdict judgeSource(const json& state, const json&, const json& layer) {
    return isLost(layer.at("source").at("general"), state.at("interface").at("list")) ? Verdict::NoSource
                                                                                      : Verdict::Fine;
}

Verdict judgeWindow(const json& state, const json&, const json& layer) {
    const json* const screen = screenOf(state, layer);
    if (screen == nullptr) {
        return Verdict::Outside;
    }
    const auto inside = [&](const char* at, const char* size, const char* count) {
        const auto begin = layer.at("window").at(at).get<double>();
        const auto length = layer.at("window").at(size).get<double>();
        const auto whole = screen->at("thumbTiming").at(size).get<double>() *
                           screen->at("mosaic").at("splice").at(count).get<double>();
        return begin >= 0 && length > 0 && begin + length <= whole;
    };
    return inside("x", "width", "column") && inside("y", "height", "row") ? Verdict::Fine : Verdict::Outside;
}

Verdict judgeAspectRatio(const json& state, const json&, const json& layer) {
    return oneOf(layer.at("aspectRatio").at("aspectRatio"), limit(state, "aspectRatios"));
}

Verdict judgeScaleMode(const json& state, const json&, const json& layer) {
    return oneOf(layer.at("scale").at("mode"), limit(state, "scaleModes"));
}

Verdict judgeCutout(const json& state, const json& layers, const json&) {
    const auto used = std::count_if(layers.begin(), layers.end(), [](const json& layer) {
        return layer.at("enable") != 0 && layer.at("cutout").at("enable") != 0;
    });
    return used <= limit(state, "cutouts") ? Verdict::Fine : Verdict::NoCapacity;
}

std::vector<Verdict> tryRecords(const Call& call, const json& records, Judge judge) {
    const ListPlace place(call.row);
    const std::string key(call.row.key);
    requireKind(records, json::value_t::array, "the body");
    json layers = call.device.state.at(place.list);
    std::vector<Verdict> verdicts;
    for (const json& record : records) {
        json* const layer = recordOf(layers, key, member(record, key, json::value_t::number_integer));
        if (layer == nullptr) {
            verdicts.push_back(Verdict::NoLayer);
            continue;
        }
        const json before = *layer;
        json& tried = layer->at(place.member);
        requireFit(member(record, place.name, kindOf(tried)), tried, place.name);
        mergeInto(tried, record[place.name]);
        verdicts.push_back(judge(call.device.state, layers, *layer));
        if (verdicts.back() != Verdict::Fine) {
            *layer = before;
        }
    }
    return verdicts;
}

void requireFine(const Call& call, const json& records, Judge judge) {
    const std::vector<Verdict> verdicts = tryRecords(call, records, judge);
    for (std::size_t i = 0; i < verdicts.size(); ++i) {
        if (verdicts[i] != Verdict::Fine) {
            throw Refusal(verdicts[i] == Verdict::NoLayer ? Failure::Unknown : Failure::Impossible,
                          fmt::format("{} {}: {}", call.row.key, records[i][std::string(call.row.key)].dump(),
                                      reasonOf(verdicts[i])));
        }
    }
}

const json* inputOf(const json& interfaces, const json& interfaceId) {
    const json* const found = recordOf(interfaces, "interfaceId", interfaceId);
    return found != nullptr &&
                   (found->at("auxiliaryInfo").at("connectorInfo").at("interfaceType").get<int>() & kInputBit) != 0
               ? found
               : nullptr;
}

bool isLost(const json& source, const json& interfaces) {
    return source.at("sourceType") == kInterfaceSource && inputOf(interfaces, source.at("sourceId")) == nullptr;
}

void describeSource(json& source, const json& interfaces) {
    const json* const input =
        source.at("sourceType") == kInterfaceSource ? inputOf(interfaces, source.at("sourceId")) : nullptr;
    if (input != nullptr) {
        const json& connector = input->at("auxiliaryInfo").at("connectorInfo");
        source["sourceName"] = input->at("general").at("name");
        source["connectorType"] = connector.at("type");
        source["connectCapacityNum"] = connector.at("capacity");
    }
}

json nestedAspectRatios(const json& records) {
    json nested = records;
    for (json& record : nested) {
        if (record.is_object() && record.contains("aspectRatio") && !record["aspectRatio"].is_object()) {
            const json flat = record;
            record["aspectRatio"] = flat;
        }
    }
    return nested;
}

}  // namespace devicesim
