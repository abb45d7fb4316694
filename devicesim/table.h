// The table of routes: what a request does, where in the state it does it, and which report tells of it.
#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "devicesim/reports.h"
#include "devicesim/tokens.h"
#include "devicesim/wire.h"

namespace devicesim {

using nlohmann::json;
using Place = json::json_pointer;

class Call;
struct Row;
using Action = void (*)(Call&);
using ReportBody = json (*)(const Row& row, const json& state, const Place& place);

/// What a report says of a place unless its row knows better: the record there; a bare value in a record of
/// its own, {"enable":1}; in a list with a key the member beside the key, {"layerId":4,"window":{...}}.
json recordAt(const Row& row, const json& state, const Place& place);

/// One row. A change of `place` is told by `report`, whether a client or the device itself made it.
struct Row {
    std::string_view verb;
    std::string_view path;  // empty: no request leads here, the device alone changes the place
    Action action = nullptr;
    std::string_view place = {};  // "/layers/list/*/window"; a star stands for any member or element
    std::string_view key = {};    // the member by which a record of the list is known
    std::uint32_t report = 0;     // none
    ReportBody body = recordAt;   // null: the action alone sends the report, a change of the place doesn't
};

/// How a request failed, in the envelope's `code`.
enum class Failure : int { NotJson = 1001, Incomplete, WrongType, Unknown, WrongLogin };

/// Thrown by an action before it has changed anything.
class Refusal : public std::runtime_error {
public:
    Refusal(Failure how, const std::string& text) : std::runtime_error(text), failure(how) {}
    const Failure failure;
};

class Table {
public:
    using Reported = std::pair<const Row*, std::vector<Place>>;

    /// Throws std::logic_error if two rows answer the same request.
    explicit Table(std::vector<Row> rows);
    Table(const Table&) = delete;
    Table& operator=(const Table&) = delete;

    const std::vector<Row>& rows() const { return rows_; }
    /// Null if no row answers.
    const Row* find(std::string_view verb, std::string_view path) const;
    bool hasPath(std::string_view path) const { return byPath_.count(path) != 0; }

    /// Which rows tell of a change at `changed`, and of which places: the one of the innermost place around
    /// it, or, if none is around it, all those that lie within it.
    std::vector<Reported> reportsOf(const Place& changed, const json& state) const;

private:
    std::vector<Row> rows_;
    std::unordered_multimap<std::string_view, const Row*> byPath_;
};

/// Everything that the core's lock guards.
struct Interior {
    const Table& table;
    const json start;
    json state = start;
    Tokens tokens;
    Reports reports;
    std::vector<std::uint64_t> requests = std::vector<std::uint64_t>(table.rows().size());  // by row
    std::uint64_t refused = 0;                                                              // without a token
    std::uint64_t astray = 0;                                                               // no such path or verb

    /// Changes of the places in one row are one report if the row has a key, else one each.
    void reportChange(const Row& row, const std::vector<Place>& places, const Source& source);
};

/// One request in its row. An action checks first, throwing a Refusal, then changes, reports and answers.
class Call {
public:
    Call(const Row& calledRow, const Request& itsRequest, const json& itsBody, Interior& interior)
        : row(calledRow), request(itsRequest), body(itsBody), device(interior) {}

    const Row& row;
    const Request& request;
    const json& body;  // null if there is none
    Interior& device;
    Reply reply;

    /// The value at the row's place, which has no star.
    json& here() { return device.state.at(Place(std::string(row.place))); }

    void answer(const json& data);
    /// Tells of changed places of this row.
    void reportChange(const std::vector<Place>& places) { device.reportChange(row, places, source()); }
    /// Sends this row's report with a body of the action's own.
    void report(const json& reportBody) { device.reports.push({row.report, reportBody.dump(), source()}); }

private:
    Source source() const { return {request.token, request.sequence}; }
};

/// {"code":CODE,"message":"TEXT","data":DATA}
std::string envelope(int code, std::string_view message, const json& data);

/// The names along a place.
std::vector<std::string> steps(Place place);

}  // namespace devicesim
