// What most rows do. A row with logic of its own has its action in its family.
#pragma once

#include <string>

#include "devicesim/table.h"

namespace devicesim {

// Reading.

/// The value; of the records of a list what `wire` names.
void show(Call& call);
/// The list at the place as a page. The query may pick records by members that they or their identities
/// have ("...IdObj"), and a page by "page" (from 1) and "limit".
void showPage(Call& call);

// Changing. What a value may be is seen from the one in its place: of the same kind, of any if that is null;
// members unknown there are passed over.

/// The body's record takes the place of the present one: it must have all its members.
void replace(Call& call);
/// The body's members take the place of the present ones, at least one; of a bare value the member so named.
void merge(Call& call);
/// The body is an array of records, each merged into its like in the list; all must exist.
void mergeEach(Call& call);
/// The body is one such record.
void mergeOne(Call& call);
/// The body is an array of records with the keys of those that go; all must exist. The report has the keys.
void removeEach(Call& call);

// For actions in the families. A number stands for booleans too, and for numbers of all sorts.

json::value_t kindOf(const json& value);
/// Throws a Refusal that names the member unless it is of that kind.
void requireKind(const json& value, json::value_t kind, const std::string& name);
/// These records as `showPage` shows them.
json page(const Call& call, const json& records);
/// As `mergeEach`, of these records.
void mergeRecords(Call& call, const json& records);
/// The place of the record that has this id. Throws a Refusal if there is none in the list.
std::size_t indexWith(const json& list, const std::string& key, const json& id);
/// The same for the id that a record has, which must have one.
std::size_t indexOf(const json& list, const std::string& key, const json& record);
/// Null if no record of the list has this id.
const json* recordOf(const json& list, const std::string& key, const json& id);
json* recordOf(json& list, const std::string& key, const json& id);
/// The lowest number from 1 that no record of the list has.
int lowestFree(const json& list, const std::string& key);

/// The member of that name and kind. Throws a Refusal.
const json& member(const json& record, const std::string& name, json::value_t kind);
/// Throws a Refusal that names the member unless `value` can take the place of `present`.
void requireFit(const json& value, const json& present, const std::string& name);
/// Puts `value` in the place of `present`; of a record the members that it has, at least one. Throws a Refusal.
void take(json& present, const json& value, const std::string& name);
/// Takes over the members that `present` knows, records in records included.
void mergeInto(json& present, const json& value);

}  // namespace devicesim
