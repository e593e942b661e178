#pragma once

#include <array>
#include <vector>

#include "headless/values/vector.h"
#include "headless/viewport.h"
#include "host/box3.h"

namespace headless {

// What a picture of the scene is about: the boxes, in world space, of the nodes that show at the
// times that the settings frame. Cameras do not count, nor does what lies flat on the ground while
// something stands upon it.
std::vector<Box3> FramedBoxes(const ViewportSettings& settings, TimeValue t);

// The boxes of all that shows at a time, but for cameras.
std::vector<Box3> ShownBoxes(TimeValue t);

std::array<Vector, 8> Corners(const Box3& box);

}  // namespace headless
