// What the device knows of its layers and sources, and whether it can do what is asked of a layer: the changes and
// the questions ahead of them ask alike.
#pragma once

#include <vector>

#include "devicesim/table.h"

namespace devicesim {

enum class Verdict : int { Fine, NoLayer, NoSource, NoCapacity, Outside, NoValue };

/// Looks at a layer as a change has left it on trial, among all layers.
using Judge = Verdict (*)(const json& state, const json& layers, const json& layer);

Verdict judgeCapacity(const json& state, const json& layers, const json& layer);
Verdict judgeSource(const json& state, const json& layers, const json& layer);
Verdict judgeWindow(const json& state, const json& layers, const json& layer);
Verdict judgeAspectRatio(const json& state, const json& layers, const json& layer);
Verdict judgeScaleMode(const json& state, const json& layers, const json& layer);
Verdict judgeCutout(const json& state, const json& layers, const json& layer);

/// Tries the records on a copy of the list at the row's place, one after the other; one that fares badly
/// leaves nothing behind for the next. Throws a Refusal for records that don't fit.
std::vector<Verdict> tryRecords(const Call& call, const json& records, Judge judge);
/// Throws a Refusal that names the first layer that fares badly.
void requireFine(const Call& call, const json& records, Judge judge);

/// Sources that are interfaces.
inline constexpr int kInterfaceSource = 1;
/// The input or expansion source of this number among the interfaces. Null if there is none.
const json* inputOf(const json& interfaces, const json& interfaceId);
/// Whether a source or a display is an interface that isn't there any more.
bool isLost(const json& source, const json& interfaces);
/// Fills in what the device knows of a layer's source, if that is an interface.
void describeSource(json& source, const json& interfaces);

/// Records whose member lies flat, {"layerId":4,"aspectRatio":1,"locked":0}, in the form of the state.
json nestedAspectRatios(const json& records);

}  // namespace devicesim
