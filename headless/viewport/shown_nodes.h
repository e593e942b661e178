#pragma once

#include <vector>

#include "headless/scene/node.h"
#include "host/box3.h"

namespace headless {

// The nodes that viewports show: all that are not hidden, in the order of the scene.
std::vector<SceneNode*> ShownNodes();

// The camera that a node shows at a time; null if it shows something else or nothing.
CameraObject* CameraOf(SceneNode& node, TimeValue t);

// Where a node is in the world, in host units: around all of its object, or its pivot alone if the
// object has no box. Empty if part of it is beyond kFarthest or nowhere at all (NaN).
Box3 WorldBox(SceneNode& node, TimeValue t);

// Farther from the origin than that nothing is framed; host units.
inline constexpr float kFarthest = 1e9F;

}  // namespace headless
