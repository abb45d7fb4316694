#include "devicesim/drag.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "devicesim/parameters.h"

namespace devicesim {

struct Drag {
    struct Window {
        json layerId;
        json start;  // where it was when the drag began
    };
    std::vector<Window> windows;
    Source source;
    Agenda::Clock::duration period{};
    std::int64_t dx = 0;
    std::int64_t dy = 0;
    std::uint64_t reports = 0;
    std::uint64_t sent = 0;
};

namespace {

using Form = Parameter::Form;

constexpr std::uint32_t kWindowReport = 0x8110b;
constexpr std::uint64_t kThere = 50;  // steps in one direction before a drag turns back

const Parameter kParameters[] = {
    {"layers", Form::Whole, nullptr, 1, 1024},
    {"rate", Form::Whole, nullptr, 1, 1000},
    {"seconds", Form::Whole, nullptr, 1, 3600},
    {"dx", Form::Whole, "4", -1000, 1000},
    {"dy", Form::Whole, "2", -1000, 1000},
    {"token", Form::Text, "\"device\""},
    {"sequence", Form::Whole, "0", std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()},
};

// Empty if the state has none.
json::array_t& layersOf(json& state) {
    static const Place kList("/layers/list");
    static json::array_t none;
    return state.contains(kList) && state.at(kList).is_array() ? state.at(kList).get_ref<json::array_t&>() : none;
}

bool canBeDragged(const json& layer) {
    const auto window = layer.is_object() ? layer.find("window") : layer.end();
    return window != layer.end() && window->is_object() && window->contains("x") && window->contains("y") &&
           window->at("x").is_number() && window->at("y").is_number() && layer.contains("layerId") &&
           layer.value("enable", json(1)) != 0;
}

std::vector<Drag::Window> windowsOf(json& state, std::size_t count) {
    std::vector<Drag::Window> windows;
    for (const json& layer : layersOf(state)) {
        if (windows.size() < count && canBeDragged(layer)) {
            windows.push_back({layer["layerId"], layer["window"]});
        }
    }
    if (windows.size() < count) {
        throw Refusal(Failure::Unknown,
                      fmt::format("layers: the state's /layers/list has {} open layers with a window, {} are wanted",
                                  windows.size(), count));
    }
    return windows;
}

// Moves what is left of the layers; the report's body.
json move(json& state, const Drag& drag) {
    const std::uint64_t phase = (drag.sent + 1) % (2 * kThere);
    const auto steps = static_cast<std::int64_t>(std::min(phase, 2 * kThere - phase));
    json body = json::array();
    json::array_t& layers = layersOf(state);
    for (const Drag::Window& each : drag.windows) {
        const auto layer = std::ranges::find_if(
            layers, [&each](const json& one) { return canBeDragged(one) && one["layerId"] == each.layerId; });
        if (layer == layers.end()) {
            continue;
        }
        json& window = layer->at("window");
        window["x"] = each.start["x"].get<std::int64_t>() + steps * drag.dx;
        window["y"] = each.start["y"].get<std::int64_t>() + steps * drag.dy;
        body.push_back({{"layerId", each.layerId}, {"window", window}});
    }
    return body;
}

// Timer thread. The next step counts from this one, so that a late one is never made up for.
void step(Interior& device, const std::shared_ptr<Drag>& drag) {
    if (device.drag != drag) {
        return;
    }
    const json body = move(device.state, *drag);
    ++drag->sent;
    if (!body.empty()) {
        device.reports.push({kWindowReport, body.dump(), drag->source});
    }
    if (body.empty() || drag->sent == drag->reports) {
        device.drag.reset();
        return;
    }
    device.agenda.after(drag->period, [drag](Interior& later) { step(later, drag); });
}

}  // namespace

void startDrag(Call& call) {
    const json form = completed(call.body, "a drag", kParameters);
    if (call.device.drag) {
        throw Refusal(Failure::Impossible, "a drag runs already: wait for its end, or DELETE it");
    }
    auto drag = std::make_shared<Drag>();
    drag->windows = windowsOf(call.device.state, form["layers"]);
    drag->source = {form["token"], form["sequence"]};
    drag->period = std::chrono::nanoseconds(std::chrono::seconds(1)) / form["rate"].get<int>();
    drag->dx = form["dx"];
    drag->dy = form["dy"];
    drag->reports = form["rate"].get<std::uint64_t>() * form["seconds"].get<std::uint64_t>();
    call.device.drag = drag;
    call.device.agenda.after({}, [drag](Interior& device) { step(device, drag); });
    call.answer({{"reports", drag->reports}});
}

void showDrag(Call& call) {
    const auto& drag = call.device.drag;
    call.answer({{"runs", drag != nullptr}, {"reports", drag ? drag->reports : 0}, {"sent", drag ? drag->sent : 0}});
}

void stopDrag(Call& call) {
    call.device.drag.reset();
    call.answer(nullptr);
}

}  // namespace devicesim
