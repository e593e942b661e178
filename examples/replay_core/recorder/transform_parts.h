#pragma once

#include <array>

#include "tvl/matrix4.h"

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

}  // namespace replay
