// Changes without end.
#pragma once

#include <array>
#include <random>
#include <thread>

#include "tests/support/realparts.h"

namespace lcdtest {

using nlohmann::json;

inline constexpr std::chrono::milliseconds kStormPace{7};  // fewer than 150 a second

/// Changes of all components, made by the device itself, by another client and by the panel in turn, the same for the
/// same start value. What the device refuses is part of the storm.
class Storm {
public:
    Storm(RealParts& real, unsigned start)
        : real_(real),
          other_(real.sim),
          effects_(real.sim.state().at("/screen/global/switch-effect/switchEffect"_json_pointer)),
          random_(start) {}

    /// After the device has forgotten its tokens.
    void loginOther() { other_ = panel::OtherClient(real_.sim); }

    /// One change of each component.
    void change() {
        global();
        node();
        screens();
        layers();
        interfaces();
        presets();
    }

    void run(int changes) {
        auto next = std::chrono::steady_clock::now();
        for (int i = 0; i < changes; ++i) {
            change();
            std::this_thread::sleep_until(next += kStormPace);
        }
    }

private:
    int below(int end) { return std::uniform_int_distribution<int>(0, end - 1)(random_); }
    std::string name() { return "N" + std::to_string(below(1000)); }

    /// By the device or by the other client.
    void change(const std::string& verb, const std::string& path, const json& body) {
        try {
            if (below(2) == 0) {
                real_.sim.send(verb, "/sim" + path, body.dump());
            } else {
                other_.send(verb, path, body);
            }
        } catch (const panel::Unreachable&) {
            throw;
        } catch (const std::runtime_error&) {
        }
    }
    void panel(const char* component, int kind, const json& value) {
        real_.session.set(panel::componentNamed(component), RealParts::kindOf(component, kind), "storm", -1,
                          RealParts::kindOf(component, kind).parse(value.dump()), nullptr);
    }
    /// By anybody.
    void anybody(const char* component, int kind, const std::string& verb, const std::string& path, const json& body) {
        if (below(3) == 0) {
            panel(component, kind, body);
        } else {
            change(verb, path, body);
        }
    }

    void global() {
        real_.sim.change("/custom/softwareName", name());
        real_.sim.change("/system/detail/freezeAudioFollow", below(2));
        anybody("SwitchMode", 1, "PUT", "/zelto/v1/screen/global/swap", {{"enable", below(2)}});
        anybody("TransitionPreview", 1, "POST", "/zelto/v1/screen/global/transition-preview", {{"enable", below(2)}});
        if (below(2) == 0) {
            const int type = std::array{1, 2, 3, 5}[static_cast<std::size_t>(below(4))];
            anybody("SwitchEffect", 2, "POST", "/zelto/v1/screen/global/active-effect", {{"type", type}});
        } else {
            panel("SwitchEffect", 1, {{"switchEffect", effects()}});
        }
    }
    /// New parameters of all effects, and a time for one of them or for none.
    json effects() {
        json all = effects_;
        for (const char* effect : {"wipe", "fadeInOut", "dip", "dve"}) {
            all[effect].erase("time");
            all[effect].erase("type");
            for (json& parameter : all[effect]) {
                parameter = below(100);
            }
        }
        all.update({{"time", below(3000)}, {"type", 1 + below(5)}});
        return all;
    }

    void node() {
        switch (below(6)) {
            case 0:
                return real_.sim.change("/node/detail/general/name", name());
            case 1:
                return anybody("Node", 6, "PUT", "/zelto/v1/node/virtual-id", {{"id", below(9)}});
            case 2:
                return anybody("Node", 16, "POST", "/zelto/v1/node/mvr/mode", {{"nodeId", 1}, {"mode", below(3)}});
            case 3:
                return anybody("Node", 17, "POST", "/zelto/v1/node/aux/follow-preset",
                               {{"nodeId", 1}, {"followPreset", below(2)}});
            case 4:
                return anybody("Node", 18, "POST", "/zelto/v1/node/device-layer-mode", {{"mode", below(2)}});
            default:
                return backup();
        }
    }
    void backup() {
        const json relation = {{{"masterSN", "EX4K16-000117"}, {"slaveSN", {"EX4K16-000118"}}}};
        if (below(2) == 0) {
            change("PUT", "/zelto/v1/node/backup", relation);
        } else {
            change("DELETE", "/zelto/v1/node/backup", relation);
        }
    }

    void screens() {
        if (below(100) == 0) {
            change("PUT", "/zelto/v1/node/mode",
                   {{"nodeId", 1}, {"mode", {{"workMode", 1 + below(3)}, {"masterSlave", 0}}}});
        } else if (below(2) == 0) {
            anybody("ScreenDetailTake", 3, "PUT", "/zelto/v1/screen/tbar",
                    {{{"screenId", 1 + below(6)}, {"percent", below(102) - 1}}});
        } else if (below(2) == 0) {
            anybody("ScreenTake", 2, "PUT", "/zelto/v1/screen/selected/cut", {{"direction", below(2)}});
        } else {
            const json effect = {{"time", 20 + below(60)}, {"type", 1}};
            anybody("ScreenTake", 1, "PUT", "/zelto/v1/screen/selected/take",
                    {{"direction", below(2)}, {"effectSelect", 0}, {"switchEffect", effect}});
        }
    }

    void layers() {
        const int id = 1 + below(12);
        switch (below(7)) {
            case 0:
                return change("PUT", "/zelto/v1/layers/switch", {{"layerId", id}, {"enable", below(2)}});
            case 1:
                return change("PUT", "/zelto/v1/layers/general", {{{"layerId", id}, {"general", {{"name", name()}}}}});
            case 2:
                return change(
                    "PUT", "/zelto/v1/layers/source",
                    {{{"layerId", id}, {"source", {{"general", {{"sourceId", 1 + below(12)}, {"sourceType", 1}}}}}}});
            case 3:
                return change("POST", "/zelto/v1/layers/transition-follow", {{{"layerId", id}, {"enable", below(2)}}});
            case 4:
                return change("PUT", "/sim/layers/number",
                              {{{"layerId", id}, {"newLayerId", id + 1}}, {{"layerId", id + 1}, {"newLayerId", id}}});
            case 5:
                return change("DELETE", "/sim/layers", {{{"layerId", id}}});
            default:
                return change("POST", "/sim/layers", {{"layerIdObj", {{"attachScreenId", 1}, {"type", 1}}}});
        }
    }

    void interfaces() {
        if (below(50) == 0) {
            const json connector = {{"index", 2}, {"workMode", 1 + below(2)}, {"capacityMode", 1}};
            change("PUT", "/zelto/v1/node/subcard/mode",
                   {{"nodeId", 1}, {"subcards", {{{"slotId", 3}, {"connectors", {connector}}}}}});
        } else {
            change("PUT", "/zelto/v1/interface/general",
                   {{{"interfaceId", 1 + below(14)}, {"general", {{"name", name()}}}}});
        }
    }

    void presets() {
        const int id = 1 + below(10);
        switch (below(4)) {
            case 0:
                return anybody(
                    "PresetSetting", 2, "PUT", "/zelto/v1/preset/create-assign",
                    {{"namePrefix", name()}, {"presetIdObj", {{"id", id}, {"sceneType", 0}, {"playType", 0}}}});
            case 1:
                return anybody("PresetSetting", 3, "PUT", "/zelto/v1/preset/play",
                               {{"presetId", id}, {"sceneType", 0}});
            case 2:
                return anybody("PresetSetting", 4, "DELETE", "/zelto/v1/preset", json::array({{{"presetId", id}}}));
            default:
                return anybody("PresetSetting", 5, "PUT", "/zelto/v1/preset/general",
                               {{"presetId", id}, {"general", {{"name", name()}}}, {"presetName", ""}});
        }
    }

    RealParts& real_;
    panel::OtherClient other_;
    const json effects_;  // as they were at first
    std::mt19937 random_;
};

}  // namespace lcdtest
