#pragma once

// After a scene has been opened or merged, or a Core attached: takes the tags off the host nodes,
// hands the Core the state in them as one tree, and reports the nodes that it did not claim. While
// the Core loads, ClaimNodes finds the tagged nodes. Without a Core the tags stay.
void GatherSceneState();
