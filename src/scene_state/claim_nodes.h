#pragma once

#include <string>
#include <vector>

#include "tvl/node.h"
#include "tvl/xml_node.h"

// For each `node` child of the node info, in order, a snapshot node on the scene node that bears
// the tag of this plug-in and this name, the caller's to release, or null. The tags being gathered
// come first, then those that the scene bears now, and last the handle that the `node` itself
// stores.
std::vector<TVL::CNode*> ClaimNodes(const std::string& pluginName, const XMLNode& nodeInfo);
