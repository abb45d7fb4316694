// Questions about an output's timing: whether its connector carries that much, and what it would carry.
#include <algorithm>
#include <array>
#include <cmath>
#include <string>

#include "devicesim/actions.h"
#include "devicesim/families/families.h"

namespace devicesim {

namespace {

constexpr int kPlainDepth = 8;  // bits a component
constexpr std::array kRates = {24, 25, 30, 48, 50, 60, 72, 75, 100, 120, 144, 240};

struct Timing {
    double width = 0;
    double height = 0;
    double frame = 0;
    double bitsPerPixel = 0;

    double mbits() const { return width * height * frame * bitsPerPixel / 1e6; }
};

// By the device's numbers of colour spaces: RGB 4:4:4, YCbCr 4:2:2, YCbCr 4:4:4, YCbCr 4:2:0.
double bitsPerPixel(const json& question) {
    const json& space = member(question, "colorSpace", json::value_t::number_integer);
    const json& depth = member(question, "colorDepth", json::value_t::number_integer);
    const double components = space == 1 ? 2 : space == 3 ? 1.5 : 3;
    return components * (depth == 10 || depth == 12 ? depth.get<double>() : kPlainDepth);
}

double number(const json& record, const std::string& name) {
    return member(record, name, json::value_t::number_integer).get<double>();
}

Timing thumbTiming(const json& question) {
    const json& timing = member(question, "thumbTiming", json::value_t::object);
    return {number(timing, "width"), number(timing, "height"), number(timing, "frame"), bitsPerPixel(question)};
}

// With what is sent between the lines and between the pictures.
Timing detailedTiming(const json& question) {
    const json& timing = member(question, "timing", json::value_t::object);
    return {number(member(timing, "horizontal", json::value_t::object), "totalTime"),
            number(member(timing, "vertical", json::value_t::object), "totalTime"), number(timing, "refresh"),
            bitsPerPixel(question)};
}

json answerTo(const json& question, const Timing& timing, const json& interface, const json& limits) {
    const double most = limits.at("mbitsPerCapacity").get<double>() *
                        interface.at("auxiliaryInfo").at("connectorInfo").at("capacity").get<double>();
    // What fits if all but the one value stays.
    const double load = timing.mbits();
    const auto greatest = [&](double value, const char* range) {
        const double highest = limits.at(range).at("max").get<double>();
        return load > 0 ? std::min(highest, value * most / load) : highest;
    };
    const std::string tag = member(question, "tagName", json::value_t::string);
    const std::string range = tag == "width" || tag == "height" ? tag : "frame";
    const double value = range == "width" ? timing.width : range == "height" ? timing.height : timing.frame;
    const double highestFrame = greatest(timing.frame, "frame");
    json rates = json::array();
    if (range == "frame") {
        std::copy_if(kRates.begin(), kRates.end(), std::back_inserter(rates),
                     [highestFrame](int rate) { return rate <= highestFrame; });
    }
    const auto whole = [](double some) { return static_cast<std::int64_t>(std::clamp(some, 0.0, 2147483647.0)); };
    return {{"interfaceId", interface.at("interfaceId")},
            {"tagName", tag},
            {"tagValueMax", whole(greatest(value, range.c_str()))},
            {"tagValueMin", limits.at(range).at("min")},
            {"maxBandwidth", whole(most)},
            {"currentBandwidth", whole(std::ceil(load))},
            {"tagValueEnum", rates},
            {"frame", highestFrame}};
}

template <Timing (*timingOf)(const json&)>
void check(Call& call) {
    requireKind(call.body, json::value_t::array, "the body");
    const json& interfaces = call.here();
    json data = json::array();
    for (const json& question : call.body) {
        const json& interface = interfaces[indexOf(interfaces, "interfaceId", question)];
        data.push_back(answerTo(question, timingOf(question), interface, call.device.state["interface"]["limits"]));
    }
    call.answer(data);
}

}  // namespace

std::vector<Row> timingRows() {
    return {
        {"POST", "/zelto/v1/interface/thumbtiming-check", check<thumbTiming>, "/interface/list"},
        {"POST", "/zelto/v1/interface/timing-check", check<detailedTiming>, "/interface/list"},
    };
}

}  // namespace devicesim
