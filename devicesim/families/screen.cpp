// The list of screens, and the settings that all of them share.
#include <array>
#include <string>

#include "devicesim/actions.h"
#include "devicesim/families/families.h"

namespace devicesim {

namespace {

struct Effect {
    int type;
    const char* name;
};
constexpr std::array kEffects = {Effect{1, "fadeInOut"}, Effect{2, "dip"}, Effect{3, "wipe"}, Effect{5, "dve"}};

constexpr std::string_view kEffectPath = "/zelto/v1/screen/global/switch-effect";
const Place kEffectPlace("/screen/global/switch-effect/switchEffect");

const char* effectName(const json& type) {
    for (const Effect& effect : kEffects) {
        if (type == effect.type) {
            return effect.name;
        }
    }
    return nullptr;
}

// Time and type stand at the top alone in what is set and reported; in the state each effect has its own.
json withoutTimes(json effects) {
    for (const Effect& effect : kEffects) {
        if (effects.contains(effect.name)) {
            effects[effect.name].erase("time");
            effects[effect.name].erase("type");
        }
    }
    return effects;
}

json setRecord(const json& effects, const json& type, const json& time) {
    json record = withoutTimes(effects);
    record["type"] = type;
    record["time"] = time;
    return record;
}

// Of a change within one effect the record has that effect's time, of any other the active one's.
json effectRecord(const Row&, const json& state, const Place& place) {
    const json& effects = state.at(kEffectPlace);
    for (const Effect& effect : kEffects) {
        if (place.back() == effect.name) {
            return setRecord(effects, effect.type, effects.at(effect.name).at("time"));
        }
    }
    return setRecord(effects, effects.at("type"), effects.at("time"));
}

// The parameters of all effects may come along; `type` says which effect's time it is.
void setSwitchEffect(Call& call) {
    json& effects = call.device.state.at(kEffectPlace);
    const json& wanted = member(call.body, "switchEffect", json::value_t::object);
    const json& type = member(wanted, "type", json::value_t::number_integer);
    const json& time = member(wanted, "time", json::value_t::number_integer);
    requireFit(wanted, effects, "switchEffect");

    json parameters = withoutTimes(wanted);
    parameters.erase("time");
    parameters.erase("type");
    mergeInto(effects, parameters);
    if (const char* const name = effectName(type)) {
        effects[name]["time"] = time;
        effects[name]["type"] = type;
    }
    if (effects["type"] == type) {
        effects["time"] = time;
    }
    call.report(setRecord(effects, type, time));
    call.answer(nullptr);
}

void setActiveEffect(Call& call) {
    const json& type = member(call.body, "type", json::value_t::number_integer);
    const char* const name = effectName(type);
    if (name == nullptr) {
        throw Refusal(Failure::Unknown, "there is no effect " + type.dump());
    }
    json& effects = call.device.state.at(kEffectPlace);
    effects["type"] = type;
    effects["time"] = effects.at(name).at("time");
    call.reportChange({kEffectPlace / "type"});
    call.answer(nullptr);
}

}  // namespace

std::vector<Row> screenRows() {
    return {
        {"GET", "/zelto/v1/screen/global/swap", show, "/screen/global/swap"},
        {"PUT", "/zelto/v1/screen/global/swap", replace, "/screen/global/swap", "", 0x71201},
        {"GET", kEffectPath, show, "/screen/global/switch-effect"},
        {"PUT", kEffectPath, setSwitchEffect, "/screen/global/switch-effect/switchEffect/*", "", 0x71205, effectRecord},
        {"POST", "/zelto/v1/screen/global/active-effect", setActiveEffect,
         "/screen/global/switch-effect/switchEffect/type", "", 0x71209},
        {"GET", "/zelto/v1/screen/global/transition-preview", show, "/screen/global/transition-preview"},
        {"POST", "/zelto/v1/screen/global/transition-preview", replace, "/screen/global/transition-preview", "",
         0x71207},

        {"GET", "/zelto/v1/screen/list-thumb", showPage, "/screen/list", "", 0, recordAt,
         "screenId screenIdObj general mosaic enable"},
    };
}

}  // namespace devicesim
