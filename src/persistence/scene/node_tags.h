#pragma once

#include "host/node.h"

// The Core's state beside the scene, on the nodes themselves, so that it travels with them into
// other scenes. Both are for the moment at which a Core is attached.

// Writes a tag on the host node of each real node whose owner has state to store: names of plug-in
// and node and, on the first node of each owner, the owner's state. The other nodes keep the
// property that they had.
void StoreSceneState();

// Empties the tag of each real node; the live scene keeps none.
void ClearNodeTags();

void ClearNodeTag(INode& hostNode);
