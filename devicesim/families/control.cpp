// The control plane: what a test does to the device behind its clients' backs.
#include <fmt/format.h>

#include <optional>
#include <string>

#include "devicesim/actions.h"
#include "devicesim/drag.h"
#include "devicesim/families/families.h"
#include "devicesim/wholenumber.h"

namespace devicesim {

namespace {

std::string memberOr(const json& record, const std::string& name, std::string_view otherwise) {
    return record.contains(name) ? member(record, name, json::value_t::string).get<std::string>()
                                 : std::string(otherwise);
}

void showState(Call& call) { call.answer(call.device.state); }

void showCounters(Call& call) {
    json requests = json::object();
    for (std::size_t i = 0; i < call.device.requests.size(); ++i) {
        const Row& row = call.device.table.rows()[i];
        if (!row.path.empty()) {
            requests[fmt::format("{} {}", row.verb, row.path)] = call.device.requests[i];
        }
    }
    call.answer({{"requests", std::move(requests)},
                 {"refused", call.device.refused},
                 {"astray", call.device.astray},
                 {"reportsSent", call.device.reports.sent()},
                 {"streamsOpen", call.device.reports.streamsOpen()},
                 {"logins", call.device.tokens.logins()}});
}

Place placeNamed(const json& state, const std::string& pointer) {
    try {
        Place place = findPlace(state, pointer);
        return state.at(place), place;
    } catch (const json::exception&) {
        throw Refusal(Failure::Unknown, fmt::format("pointer: the state has no place \"{}\"", pointer));
    }
}

// {"pointer":"/layers/list/layerId=4/window","value":...}: the device itself changes a place and reports it.
void change(Call& call) {
    json& state = call.device.state;
    const Place place = placeNamed(state, member(call.body, "pointer", json::value_t::string));
    if (!call.body.contains("value")) {
        throw Refusal(Failure::Incomplete, "value is missing");
    }
    take(state.at(place), call.body["value"], "value");
    json told = json::array();
    for (const auto& [row, places] : call.device.table.reportsOf(place, state)) {
        call.device.reportChange(*row, places, {std::string(kDeviceToken), 0});
        told.push_back(fmt::format("{:x}", row->report));
    }
    call.answer({{"reports", std::move(told)}});
}

// {"id":"71201","body":...,"token":"..","sequence":5}: a report as it stands; a body that is a string is sent
// as its text, fit or not.
void pushReport(Call& call) {
    const std::string id = member(call.body, "id", json::value_t::string);
    const std::optional number = wholeNumber<decltype(Report::id)>(id, 16);
    if (!number) {
        throw Refusal(Failure::WrongType, "id must be a report's number in hexadecimal, without 0x");
    }
    if (!call.body.contains("body")) {
        throw Refusal(Failure::Incomplete, "body is missing");
    }
    const json& body = call.body["body"];
    Report report;
    report.id = *number;
    report.body = body.is_string() ? body.get<std::string>() : body.dump();
    report.source.token = memberOr(call.body, "token", kDeviceToken);
    if (call.body.contains("sequence")) {
        report.source.sequence = member(call.body, "sequence", json::value_t::number_integer).get<std::int32_t>();
    }
    call.device.reports.push(report);
    call.answer(nullptr);
}

// Off and on again. {"state":"initial"} also forgets all changes.
void restart(Call& call) {
    const std::string state = call.body.is_null() ? "" : memberOr(call.body, "state", "");
    if (!state.empty() && state != "initial") {
        throw Refusal(Failure::Unknown, "state can only be \"initial\"");
    }
    if (!state.empty()) {
        call.device.state = call.device.start;
    }
    call.device.restart();
    call.answer(nullptr);
}

void expire(Call& call) {
    call.device.tokens.expire();
    call.answer(nullptr);
}

void showFaults(Call& call) { call.answer(call.device.faults.show()); }

// One rule or a list of them, all or none.
void addFaults(Call& call) { call.answer({{"ids", call.device.faults.add(call.body, call.device)}}); }

// All, or by "?id=3" that one.
void removeFaults(Call& call) {
    std::optional<int> id;
    if (const auto found = call.request.query.find("id"); found != call.request.query.end()) {
        id = wholeNumber<int>(found->second);
        if (!id) {
            throw Refusal(Failure::WrongType, "id must be the number of a rule");
        }
    }
    call.device.faults.remove(id, call.device);
    call.answer(nullptr);
}

}  // namespace

std::vector<Row> controlRows() {
    return {
        {"GET", "/sim/state", showState},        {"GET", "/sim/counters", showCounters},
        {"POST", "/sim/change", change},         {"POST", "/sim/report", pushReport},
        {"POST", "/sim/restart", restart},       {"POST", "/sim/expire", expire},
        {"GET", "/sim/faults", showFaults},      {"POST", "/sim/faults", addFaults},
        {"DELETE", "/sim/faults", removeFaults}, {"GET", "/sim/drag", showDrag},
        {"POST", "/sim/drag", startDrag},        {"DELETE", "/sim/drag", stopDrag},
    };
}

}  // namespace devicesim
