// Take, cut and T-bar: preview goes on air. A T-bar at rest says -1; so does the last report of a move.
#include "devicesim/families/take.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <utility>

#include "devicesim/actions.h"
#include "devicesim/families/families.h"

namespace devicesim {

namespace {

constexpr int kProgramme = 0;  // sceneType of a layer's identity
constexpr int kPreview = 1;
constexpr int kWhole = 100;  // percent
constexpr std::chrono::milliseconds kStep{40};
constexpr int kLongestMs = 60000;

constexpr std::uint32_t kSelectedTbar = 0x71202;
constexpr std::uint32_t kSelectedTake = 0x71203;
constexpr std::uint32_t kSelectedCut = 0x71204;
constexpr std::uint32_t kTake = 0x71302;
constexpr std::uint32_t kTbar = 0x71303;
constexpr std::uint32_t kCut = 0x71304;

const Place kScreens("/screen/list");
const Place kSelectedPlace("/screen/selected/tbar");

// One screen's way through a transition.
struct Passage {
    json screenId;
    int direction = 0;  // 0: from preview to programme
    std::chrono::milliseconds duration{0};
    int percent = 0;  // where the move has left the T-bar
};

// A take on its way.
struct Move {
    std::vector<Passage> passages;
    bool selected = false;  // of the selected screens as a group
    Source source;
    Agenda::Clock::time_point start = Agenda::Clock::now();
};

json* screenWith(json& state, const json& screenId) { return recordOf(state.at(kScreens), "screenId", screenId); }

bool isOn(const json& layer, const json& screen, int scene) {
    const json& layerId = layer.at("layerIdObj");
    const json& screenId = screen.at("screenIdObj");
    return layerId.at("attachScreenId") == screenId.at("id") && layerId.at("attachScreenType") == screenId.at("type") &&
           layerId.at("sceneType") == scene;
}

// The layers of the two scenes change places. Their numbers go with them.
void swapScenes(json& layers, const json& screen) {
    for (json& layer : layers) {
        if (isOn(layer, screen, kProgramme)) {
            layer["layerIdObj"]["sceneType"] = kPreview;
        } else if (isOn(layer, screen, kPreview)) {
            layer["layerIdObj"]["sceneType"] = kProgramme;
        }
    }
}

// One scene becomes as the other is. Layers that both have keep their numbers.
void copyScene(json& state, const json& screen, int from, int to) {
    json& layers = state["layers"]["list"];
    const std::size_t most = state["layers"]["limits"]["layers"];
    const auto likeIn = [&screen](json& list, const json& layer, int scene) {
        return std::find_if(list.begin(), list.end(), [&](const json& other) {
            return isOn(other, screen, scene) && other.at("layerIdObj").at("id") == layer.at("layerIdObj").at("id");
        });
    };
    json next = json::array();
    for (const json& layer : layers) {
        if (!isOn(layer, screen, to) || likeIn(layers, layer, from) != layers.end()) {
            next.push_back(layer);
        }
    }
    for (const json& layer : layers) {
        if (!isOn(layer, screen, from)) {
            continue;
        }
        json copy = layer;
        if (const auto like = likeIn(next, layer, to); like != next.end()) {
            copy["layerId"] = (*like)["layerId"];
            copy["layerIdObj"] = (*like)["layerIdObj"];
            *like = std::move(copy);
        } else if (next.size() < most) {
            copy["layerId"] = lowestFree(next, "layerId");
            copy["layerIdObj"]["sceneType"] = to;
            next.push_back(std::move(copy));
        }
    }
    layers = std::move(next);
}

bool swaps(const json& state) { return state.at("screen").at("global").at("swap").at("enable") != 0; }

void passOver(json& state, const json& screen, int direction) {
    if (swaps(state)) {
        swapScenes(state["layers"]["list"], screen);
    } else if (direction == 0) {
        copyScene(state, screen, kPreview, kProgramme);
    } else {
        copyScene(state, screen, kProgramme, kPreview);
    }
}

void reportTbars(Interior& device, const std::vector<json>& screenIds, const Source& source) {
    std::vector<Place> places;
    for (const json& id : screenIds) {
        places.push_back(kScreens / indexWith(device.state.at(kScreens), "screenId", id) / "percent");
    }
    if (!places.empty()) {
        device.reportChange(device.table.reporting(kTbar), places, source);
    }
}

void setSelectedTbar(Interior& device, int percent, const Source& source) {
    json& present = device.state.at(kSelectedPlace).at("percent");
    if (present != percent) {
        present = percent;
        device.reportChange(device.table.reporting(kSelectedTbar), {kSelectedPlace}, source);
    }
}

void reportTake(Interior& device, const Move& move, bool done) {
    const std::string body = json{{"status", done ? 1 : 0}, {"swap", swaps(device.state) ? 1 : 0}}.dump();
    device.reports.push({kTake, body, move.source});
    if (move.selected) {
        device.reports.push({kSelectedTake, body, move.source});
    }
}

void step(Interior& device, Move move);

void stepLater(Interior& device, Move move) {
    device.agenda.after(kStep, [move = std::move(move)](Interior& later) { step(later, move); });
}

// A screen that another mode has taken away, or whose T-bar a hand has taken over, is out.
void step(Interior& device, Move move) {
    std::erase_if(move.passages, [&device](const Passage& passage) {
        const json* const screen = screenWith(device.state, passage.screenId);
        return screen == nullptr || screen->at("percent") != passage.percent;
    });
    const auto elapsed = Agenda::Clock::now() - move.start;
    std::vector<json> moved;
    std::vector<json> ended;
    for (Passage& passage : move.passages) {
        json& screen = *screenWith(device.state, passage.screenId);
        if (elapsed >= passage.duration) {
            passOver(device.state, screen, passage.direction);
            screen["percent"] = kAtRest;
            ended.push_back(passage.screenId);
        } else {
            passage.percent = static_cast<int>(elapsed * kWhole / passage.duration);
            screen["percent"] = passage.percent;
            moved.push_back(passage.screenId);
        }
    }
    std::erase_if(move.passages, [&](const Passage& passage) {
        return std::find(ended.begin(), ended.end(), passage.screenId) != ended.end();
    });
    if (move.selected) {
        setSelectedTbar(device, moved.empty() ? kAtRest : move.passages.front().percent, move.source);
    }
    reportTbars(device, moved, move.source);
    reportTbars(device, ended, move.source);
    if (!moved.empty()) {
        stepLater(device, std::move(move));
    } else if (!ended.empty()) {
        reportTake(device, move, true);
    }
}

// Refuses screens that aren't there or are on their way.
void requireAtRest(Call& call, const std::vector<Passage>& passages) {
    for (auto passage = passages.begin(); passage != passages.end(); ++passage) {
        const json& screens = call.device.state.at(kScreens);
        const json& screen = screens[indexWith(screens, "screenId", passage->screenId)];
        const bool twice = std::any_of(passages.begin(), passage,
                                       [&](const Passage& other) { return other.screenId == passage->screenId; });
        if (twice || screen.at("percent") != kAtRest) {
            throw Refusal(Failure::Impossible, fmt::format("screenId {} is in a transition", passage->screenId.dump()));
        }
    }
}

std::vector<json> selectedScreens(Call& call) {
    std::vector<json> ids;
    for (const json& screen : call.device.state.at(kScreens)) {
        if (screen.at("select") != 0) {
            ids.push_back(screen.at("screenId"));
        }
    }
    return ids.empty() ? throw Refusal(Failure::Impossible, "no screen is selected") : ids;
}

// What a request says of a take; the rest is as in the selected screens' T-bar.
json takeOf(Call& call, const json& record) {
    json take = call.device.state.at(kSelectedPlace);
    take["direction"] = 0;
    requireFit(record, take, "a take");
    mergeInto(take, record);
    const json& time = take["switchEffect"]["time"];
    if (time < 0 || time > kLongestMs) {
        throw Refusal(Failure::Impossible, fmt::format("time must be 0 to {} ms", kLongestMs));
    }
    return take;
}

Passage passageOf(const json& screenId, const json& take) {
    return {screenId, take["direction"], std::chrono::milliseconds(take["switchEffect"]["time"].get<int>())};
}

void start(Call& call, Move move) {
    requireAtRest(call, move.passages);
    for (const Passage& passage : move.passages) {
        (*screenWith(call.device.state, passage.screenId))["percent"] = passage.percent;
    }
    reportTake(call.device, move, false);
    step(call.device, std::move(move));
    call.answer(nullptr);
}

// [{"screenId":1,"direction":0,"effectSelect":0,"switchEffect":{"time":500,"type":1},"screenName":""}]
void takeScreens(Call& call) {
    requireKind(call.body, json::value_t::array, "the body");
    Move move{.passages = {}, .source = call.source()};
    for (const json& record : call.body) {
        move.passages.push_back(
            passageOf(member(record, "screenId", json::value_t::number_integer), takeOf(call, record)));
    }
    start(call, std::move(move));
}

void takeSelected(Call& call) {
    const json take = takeOf(call, call.body);
    Move move{.passages = {}, .selected = true, .source = call.source()};
    for (const json& id : selectedScreens(call)) {
        move.passages.push_back(passageOf(id, take));
    }
    requireAtRest(call, move.passages);
    json& tbar = call.device.state.at(kSelectedPlace);
    tbar["effectSelect"] = take["effectSelect"];
    tbar["switchEffect"] = take["switchEffect"];
    start(call, std::move(move));
}

void cut(Call& call, const std::vector<Passage>& passages) {
    requireAtRest(call, passages);
    json told = json::array();
    for (const Passage& passage : passages) {
        const json& screen = *screenWith(call.device.state, passage.screenId);
        passOver(call.device.state, screen, passage.direction);
        told.push_back({{"screenId", passage.screenId},
                        {"direction", passage.direction},
                        {"screenName", screen.at("general").at("name")}});
    }
    call.device.reports.push({kCut, told.dump(), call.source()});
    call.answer(nullptr);
}

int directionOf(const json& record) { return member(record, "direction", json::value_t::number_integer); }

// [{"screenId":1,"direction":0,"screenName":""}]
void cutScreens(Call& call) {
    requireKind(call.body, json::value_t::array, "the body");
    std::vector<Passage> passages;
    for (const json& record : call.body) {
        passages.push_back({member(record, "screenId", json::value_t::number_integer), directionOf(record)});
    }
    cut(call, passages);
}

void cutSelected(Call& call) {
    const int direction = directionOf(call.body);
    std::vector<Passage> passages;
    for (const json& id : selectedScreens(call)) {
        passages.push_back({id, direction});
    }
    cut(call, passages);
    call.report({{"direction", direction}});
}

// [{"screenId":1,"percent":40}]: a T-bar that has come to one of its ends is at rest, at the far one preview
// has gone on air.
void setTbars(Call& call) {
    requireKind(call.body, json::value_t::array, "the body");
    for (const json& record : call.body) {
        const json& percent = member(record, "percent", json::value_t::number_integer);
        if (percent < kAtRest || percent > kWhole) {
            throw Refusal(Failure::Impossible, "percent must be -1 to 100");
        }
    }
    mergeEach(call);
    std::vector<json> arrived;
    for (const json& record : call.body) {
        json& screen = *screenWith(call.device.state, record["screenId"]);
        if (screen["percent"] == 0 || screen["percent"] == kWhole) {
            if (screen["percent"] == kWhole) {
                passOver(call.device.state, screen, 0);
            }
            screen["percent"] = kAtRest;
            arrived.push_back(screen["screenId"]);
        }
    }
    reportTbars(call.device, arrived, call.source());
}

}  // namespace

std::vector<Row> takeRows() {
    return {
        {"GET", "/zelto/v1/screen/selected/tbar", show, "/screen/selected/tbar", "", kSelectedTbar},
        {"PUT", "/zelto/v1/screen/selected/take", takeSelected, "/screen/selected/tbar", "", kSelectedTake, nullptr},
        {"PUT", "/zelto/v1/screen/selected/cut", cutSelected, "/screen/selected/tbar", "", kSelectedCut, nullptr},

        {"GET", "/zelto/v1/screen/tbar", show, "/screen/list", "", 0, recordAt, "screenId percent"},
        {"PUT", "/zelto/v1/screen/tbar", setTbars, "/screen/list/*/percent", "screenId", kTbar},
        {"PUT", "/zelto/v1/screen/take", takeScreens, "/screen/list", "screenId", kTake, nullptr},
        {"PUT", "/zelto/v1/screen/cut", cutScreens, "/screen/list", "screenId", kCut, nullptr},
    };
}

}  // namespace devicesim
