// Which node stands in for which: relations by serial number, and the progress of those that are being made.
#include <algorithm>
#include <chrono>

#include "devicesim/actions.h"
#include "devicesim/families/families.h"
#include "devicesim/families/node.h"

namespace devicesim {

namespace {

constexpr std::uint32_t kProgress = 0x50716;
constexpr int kRunning = 1;
constexpr int kDone = 2;
constexpr int kStep = 10;
const Place kProgressPlace("/node/backup/progress");

json* nodeWith(json& state, const json& sn) {
    const std::vector<json*> nodes = nodesOf(state);
    const auto found = std::find_if(nodes.begin(), nodes.end(), [&](const json* node) { return node->at("sn") == sn; });
    return found == nodes.end() ? nullptr : *found;
}

json identityOf(json& state, const json& node) {
    const json* const brief = recordOf(state.at("node").at("list"), "nodeId", node.at("nodeId"));
    return {{"sn", node.at("sn")}, {"ip", brief == nullptr ? json("") : brief->at("ip")}};
}

bool isFree(json& state, const json& sn) {
    const json* const node = nodeWith(state, sn);
    return node != nullptr && node->at("deviceBackup").at("slave").empty();
}

// The serial numbers of an entry, the master's first.
std::vector<json> membersOf(const json& entry) {
    std::vector<json> members = {member(entry, "masterSN", json::value_t::string)};
    for (const json& slave : member(entry, "slaveSN", json::value_t::array)) {
        requireKind(slave, json::value_t::string, "an element of slaveSN");
        members.push_back(slave);
    }
    return members;
}

void relate(json& state, const std::vector<json>& members) {
    json relation = {{"master", identityOf(state, *nodeWith(state, members.front()))}, {"slave", json::array()}};
    for (std::size_t i = 1; i < members.size(); ++i) {
        relation["slave"].push_back(identityOf(state, *nodeWith(state, members[i])));
    }
    for (const json& sn : members) {
        (*nodeWith(state, sn))["deviceBackup"] = relation;
    }
}

void advanceLater(Interior& device, int reached, const Source& source);

// Goes on until the end, or until something else has set the progress.
void advance(Interior& device, int reached, const Source& source) {
    json& progress = device.state.at(kProgressPlace);
    if (progress.at("state") != kRunning || progress.at("progress") != reached) {
        return;
    }
    const int next = std::min(100, reached + kStep);
    progress = {{"progress", next}, {"state", next == 100 ? kDone : kRunning}};
    device.reportChange(device.table.reporting(kProgress), {kProgressPlace}, source);
    if (next < 100) {
        advanceLater(device, next, source);
    }
}

void advanceLater(Interior& device, int reached, const Source& source) {
    const std::chrono::milliseconds step(device.state.at("node").at("backup").at("stepMs").get<int>());
    device.agenda.after(step, [reached, source](Interior& later) { advance(later, reached, source); });
}

std::vector<std::vector<json>> entriesOf(const Call& call) {
    requireKind(call.body, json::value_t::array, "the body");
    std::vector<std::vector<json>> entries;
    for (const json& entry : call.body) {
        entries.push_back(membersOf(entry));
    }
    return entries;
}

json recordOfEntry(const std::vector<json>& members) {
    return {{"masterSN", members.front()}, {"slaveSN", std::vector<json>(members.begin() + 1, members.end())}};
}

// [{"masterSN":"...","slaveSN":["..."]}]: an entry is left out if it names a node that is unknown, or stands in
// a relation already; the answer has the names of those nodes.
void createBackup(Call& call) {
    json& state = call.device.state;
    json& progress = state.at(kProgressPlace);
    const auto entries = entriesOf(call);
    if (progress.at("state") == kRunning) {
        throw Refusal(Failure::Impossible, "a backup is being made already");
    }
    json failed = json::array();
    json made = json::array();
    for (const std::vector<json>& members : entries) {
        const std::size_t failedBefore = failed.size();
        for (auto sn = members.begin(); sn != members.end(); ++sn) {
            if (!isFree(state, *sn) || std::find(members.begin(), sn, *sn) != sn) {
                failed.push_back(*sn);
            }
        }
        if (failed.size() == failedBefore && members.size() > 1) {
            relate(state, members);
            made.push_back(recordOfEntry(members));
        }
    }
    call.answer({{"failList", failed}});
    if (made.empty()) {
        return;
    }
    call.report(made);
    progress = {{"progress", 0}, {"state", kRunning}};
    call.device.reportChange(call.device.table.reporting(kProgress), {kProgressPlace}, call.source());
    advanceLater(call.device, 0, call.source());
}

// A relation goes as a whole.
void removeBackup(Call& call) {
    json& state = call.device.state;
    const auto entries = entriesOf(call);
    json gone = json::array();
    for (const std::vector<json>& members : entries) {
        const json* const master = nodeWith(state, members.front());
        std::vector<json> related = {members.front()};
        for (const json& slave : master == nullptr ? json::array() : master->at("deviceBackup").at("slave")) {
            related.push_back(slave.at("sn"));
        }
        const auto isRelated = [&](const json& sn) {
            return std::find(related.begin(), related.end(), sn) != related.end();
        };
        if (master == nullptr || related.size() == 1 ||
            master->at("deviceBackup").at("master").at("sn") != members.front() ||
            !std::all_of(members.begin(), members.end(), isRelated)) {
            throw Refusal(Failure::Unknown, "there is no such relation of " + members.front().get<std::string>());
        }
        gone.push_back(recordOfEntry(related));
    }
    for (const json& entry : gone) {
        (*nodeWith(state, entry["masterSN"]))["deviceBackup"]["slave"] = json::array();
        for (const json& sn : entry["slaveSN"]) {
            (*nodeWith(state, sn))["deviceBackup"] = {{"master", {{"sn", ""}, {"ip", ""}}}, {"slave", json::array()}};
        }
    }
    call.report(gone);
    call.answer(nullptr);
}

}  // namespace

std::vector<Row> backupRows() {
    return {
        {"PUT", "/zelto/v1/node/backup", createBackup, "/node/detail/deviceBackup", "", 0x50711, nullptr},
        {"DELETE", "/zelto/v1/node/backup", removeBackup, "/node/detail/deviceBackup", "", 0x50714, nullptr},
        {"", "", nullptr, "/node/backup/progress", "", kProgress},
    };
}

}  // namespace devicesim
