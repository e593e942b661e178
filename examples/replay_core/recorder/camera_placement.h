#pragma once

#include <array>
#include <span>

#include "tvl/matrix4.h"
#include "tvl/node.h"

namespace replay {

// A ball around the joints of a pose, in metres.
struct Surround {
    std::array<double, 3> centre{};
    double radius = 0;
};

Surround SurroundOf(std::span<const TVL::CMatrix4> pose);

// Puts a free camera level in front of what it is to show, along the axis Z, as far away as its
// field of view takes, and its target into the middle.
void PlaceCamera(TVL::CoreNode& camera, const Surround& subject, double seconds);

}  // namespace replay
