#pragma once

#include <array>

#include "tvl/matrix4.h"
#include "tvl/node.h"

namespace replay {

// A world transform taken apart. The scale is that from the node's own space, which is in host
// units, to metres: a node that nobody has scaled has the metres in a host unit on all three axes.
struct TransformParts {
    std::array<double, 3> translation{};  // metres
    std::array<double, 4> rotation{};     // a unit quaternion x, y, z, w, with w not below 0
    std::array<double, 3> scale{};        // all three below 0 if the transform mirrors
};

// Axes that are not at right angles are straightened, x first, then y. A transform that flattens
// space has no rotation, and is given the one that does nothing. Quaternion from matrix: S. W.
// Shepperd, "Quaternion from rotation matrix", Journal of Guidance and Control 1 (1978).
TransformParts PartsOf(const TVL::CMatrix4& transform);

// A node's object space is in host units, and a world transform leads from there to metres. Its
// rows therefore have the length of one host unit in metres (times whatever the user scaled the
// node by). A pose that is given in metres throughout has to take that length over, or the node
// comes out scaled.
struct ObjectScale {
    std::array<double, 3> rowLengths{1, 1, 1};
};

// The node's at that time.
ObjectScale ObjectScaleOf(TVL::CoreNode& node, double seconds);

// From a node that nobody has scaled.
double HostUnitsPerMetre(TVL::CoreNode& node, double seconds);

// The pose with its rows, but not its place, scaled.
TVL::CMatrix4 WithObjectScale(TVL::CMatrix4 pose, const ObjectScale& scale);

}  // namespace replay
