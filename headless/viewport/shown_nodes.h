#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "headless/scene/node.h"
#include "headless/values/vector.h"
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

struct ShownBox {
    std::uint32_t handle = 0;  // the node's
    Box3 box;                  // world space
};

// All that shows at a time, but for cameras.
std::vector<ShownBox> ShownBoxes(TimeValue t);

// What a picture of a time is about: neither cameras, nor what lies flat on the ground while
// something stands upon it.
std::vector<ShownBox> FramedBoxes(TimeValue t);

void Grow(Box3& box, const Box3& around);

std::array<Vector, 8> Corners(const Box3& box);

}  // namespace headless
