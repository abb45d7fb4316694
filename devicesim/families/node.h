// The node that the device itself is.
#pragma once

#include <string>

#include "devicesim/table.h"

namespace devicesim {

/// Throws a Refusal for the number of another node.
void requireLocalNode(const json& state, const std::string& nodeId);

/// The local node's detail and those of the other nodes.
std::vector<json*> nodesOf(json& state);

}  // namespace devicesim
