#pragma once

#include <array>
#include <vector>

#include "headless/scene/node.h"
#include "headless/values/vector.h"
#include "headless/viewport.h"
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

// What a picture of the scene is about: the boxes, in world space, of the nodes that show at the
// times that the settings frame. Cameras do not count, nor does what lies flat on the ground while
// something stands upon it.
std::vector<Box3> FramedBoxes(const ViewportSettings& settings, TimeValue t);

// The boxes of all that shows at a time, but for cameras.
std::vector<Box3> ShownBoxes(TimeValue t);

std::array<Vector, 8> Corners(const Box3& box);

}  // namespace headless
