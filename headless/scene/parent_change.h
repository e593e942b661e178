#pragma once

#include "headless/scene/node.h"
#include "host/types.h"

namespace headless {

// Moves a node to the end of another parent's children, undoably; both are in the scene.
//
// A change of parents rewrites the keys of a controller without a record, and cannot be worked out
// backwards: where a parent flattens space, all keys become one. So while a hold is open it is a
// copy that is adapted and takes the place of the controller, which stays as it was, at its
// address, and comes back by undo. Records of key changes meet the controller that they name,
// since undo goes through them in order. The copy takes the place for all who share the controller,
// and what it refers to is copied and replaced with it.

void MoveWithParent(SceneNode& node, SceneNode& parent);

// The node stays where it is in the world at `t`.
void MoveAndKeepWorld(SceneNode& node, SceneNode& parent, TimeValue t);

}  // namespace headless
