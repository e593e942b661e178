#pragma once

#include <array>

#include "tvl/matrix4.h"

namespace TVL {

// A transform taken apart: first the scale along the object's own axes, then the turn, then the
// translation. Of a world transform that an adaptor gives, the scale leads from the node's own
// space, which is in host units, to metres: a node that nobody has scaled has the metres in a host
// unit on all three axes.
struct TransformParts {
    std::array<double, 3> translation{};         // in the matrix's own unit
    std::array<double, 4> rotation{0, 0, 0, 1};  // a unit quaternion x, y, z, w, with w not below 0
    std::array<double, 3> scale{1, 1, 1};        // all three below 0 if the transform mirrors
};

// Axes that are not at right angles are straightened, x first, then y. A transform that flattens
// space, or is no number, has no rotation, and is given the one that does nothing. Quaternion from
// matrix: S. W. Shepperd, "Quaternion from rotation matrix", Journal of Guidance and Control 1
// (1978).
TransformParts PartsOf(const CMatrix4& transform);

}  // namespace TVL
