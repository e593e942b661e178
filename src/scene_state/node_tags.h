#pragma once

#include <string>
#include <vector>

#include "host/node.h"
#include "tvl/node.h"
#include "tvl/xml_node.h"

// The Core's state beside the scene, on the nodes themselves, so that it travels with them into
// other scenes. Tags are no part of what the user does: undo, redo and the cancel of a hold leave
// them as they find them. All of this is for the moment at which a Core is attached.

// Writes a tag on the host node of each real node whose owner has state to store: names of plug-in
// and node and, on the first node of each owner, the owner's state. The other nodes keep the
// property that they had.
void StoreSceneState();

// The same for a Core that leaves, whose state has nowhere else to be. The hold that its groups
// began ends first. Under a hold of somebody else's, who may cancel it, every node of an owner
// bears the owner's state: which of them will be there then nobody knows.
void StoreStateForNextCore();

// Empties the tag of each real node, and of what was copied from one since; the live scene keeps
// none.
void ClearNodeTags();

// One that fails keeps no other from being cleared.
void ClearNodeTag(INode& hostNode);

// After a scene has been opened or merged, or a Core attached: takes the tags off the host nodes,
// hands the Core the state in them as one tree, and reports the nodes that it did not claim. While
// the Core loads, ClaimNodes finds the tagged nodes. Without a Core the tags stay.
void GatherSceneState();

// For each `node` child of the node info, in order, a snapshot node on the scene node that bears
// the tag of this plug-in and this name, the caller's to release, or null. The tags being gathered
// come first, then those that the scene bears now, and last the handle that the `node` itself
// stores.
std::vector<TVL::CNode*> ClaimNodes(const std::string& pluginName, const XMLNode& nodeInfo);
