#pragma once

// The Core's state beside the scene, on the nodes themselves, so that it travels with them. Each is
// for the moment at which a Core is attached.

inline constexpr const char* kNodeTagProperty = "TVL_tag";

// Writes a tag on the host node of each real node whose owner has state to store: names of plug-in
// and node and, on the first node of each owner, the owner's state.
void StoreSceneState();

// Empties the tags again.
void ClearNodeTags();

// Tells the Core that there is nothing to load.
void GatherSceneState();
