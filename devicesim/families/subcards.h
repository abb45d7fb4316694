// The cards of the local node: what their connectors work as decides which interfaces there are.
#pragma once

#include "devicesim/table.h"

namespace devicesim {

/// The node's cards with the changes of a request, {"nodeId":1,"subcards":[{"slotId":3,"connectors":[...]}]}.
/// Throws a Refusal.
json changedCards(const json& state, const json& request);

struct Interfaces {
    json list = json::array();   // their connectors work for them
    json spare = json::array();  // their connectors work as something else
};

/// The interfaces that the device has with these cards.
Interfaces interfacesWith(const json& state, const json& cards);

/// Takes lost sources from the layers and tells the layers anew of those that have changed. The indexes of the
/// layers whose source is another now.
std::vector<std::size_t> settleSources(json& layers, const json& interfaces);

}  // namespace devicesim
