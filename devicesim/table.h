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

#include "devicesim/agenda.h"
#include "devicesim/faults.h"
#include "devicesim/reports.h"
#include "devicesim/tokens.h"
#include "devicesim/wire.h"

namespace devicesim {

using nlohmann::json;
using Place = json::json_pointer;

/// Under it lies the control plane. Every path of the device is there once more, with this ahead of it: what
/// the device does that way it does by itself.
inline constexpr std::string_view kControlPrefix = "/sim/";

class Call;
struct Row;
using Action = void (*)(Call&);
using ReportBody = json (*)(const Row& row, const json& state, const Place& place);

/// What a report says of a place unless its row knows better: the record there; a bare value in a record of
/// its own, {"enable":1}; of a list's record the member beside the key, {"layerId":4,"window":{...}}.
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
    std::string_view wire =
        {};  // names on the wire that aren't the state's: of the one member that the row is
             // about, or, with blanks between them, of all that a list shows, "layerId general/name"
};

/// The place of a row within a list's records.
struct ListPlace {
    explicit ListPlace(const Row& row);
    Place of(std::size_t index) const { return list / index / member; }

    Place list;
    Place member;      // empty: the record itself
    std::string name;  // the member's, on the wire
};

/// How a request failed, in the envelope's `code`.
enum class Failure : int { NotJson = 1001, Incomplete, WrongType, Unknown, WrongLogin, Impossible };

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
    bool hasPath(std::string_view path) const;

    /// Which rows tell of a change at `changed`, and of which places: the one of the innermost place around
    /// it, or, if none is around it, the outermost that lie within it.
    std::vector<Reported> reportsOf(const Place& changed, const json& state) const;
    /// All rows that tell of changes, with all their places.
    std::vector<Reported> allReports(const json& state) const;
    /// The row that tells of a change by this report. Throws std::logic_error if there is none.
    const Row& reporting(std::uint32_t report) const;

private:
    std::vector<Reported> placesOf(const Place& changed, const json& state) const;

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
    Agenda agenda = {};
    Faults faults = {};
    std::function<void(bool on)> refuseConnections = [](bool) {};
    std::shared_ptr<struct Drag> drag = nullptr;                                            // the one that runs
    std::vector<std::uint64_t> requests = std::vector<std::uint64_t>(table.rows().size());  // by row
    std::uint64_t refused = 0;                                                              // without a token
    std::uint64_t astray = 0;                                                               // no such path or verb

    /// Changes of the places in one row are one report if the row has a key, else one each.
    void reportChange(const Row& row, const std::vector<Place>& places, const Source& source);
    /// Off and on again; the state stays.
    void restart();
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
    Source source() const;
};

/// {"code":CODE,"message":"TEXT","data":DATA}
std::string envelope(int code, std::string_view message, const json& data);

/// The text as JSON. Throws a Refusal if it is none, or is nested too deeply for who copies or writes it.
json parsed(const std::string& text);

/// The names along a place.
std::vector<std::string> steps(Place place);

/// A string's own text, of other values their JSON.
std::string textOf(const json& value);

/// The place that a pointer names, in which an element of a list may also be named by a member:
/// "/layers/list/layerId=4/window". A name that fits no element stays as it is.
Place findPlace(const json& state, const std::string& pointer);

}  // namespace devicesim
