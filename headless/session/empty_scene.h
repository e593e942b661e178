#pragma once

namespace headless {

// Ends a hold that somebody left open, empties the undo buffer, and frees every node. Not while a
// step is undone or redone, whose records still need theirs.
void EmptyScene();

}  // namespace headless
