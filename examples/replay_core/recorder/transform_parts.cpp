#include "replay_core/recorder/transform_parts.h"

#include <cmath>
#include <cstddef>
#include <span>

#include "replay_core/recorder/loans.h"

namespace replay {

ObjectScale ObjectScaleOf(TVL::CoreNode& node, double seconds) {
    ObjectScale scale;
    const TransformLoan snapshot(node, seconds);
    if (!snapshot) return scale;
    const TVL::CMatrix4 transform = snapshot->GetWorldTransform();
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const double* const row = transform[static_cast<int>(axis)];
        scale.rowLengths[axis] = std::hypot(row[0], row[1], row[2]);
    }
    return scale;
}

double HostUnitsPerMetre(TVL::CoreNode& node, double seconds) {
    const double metresPerHostUnit = ObjectScaleOf(node, seconds).rowLengths[0];
    return metresPerHostUnit > 0 ? 1 / metresPerHostUnit : 1;
}

TVL::CMatrix4 WithObjectScale(TVL::CMatrix4 pose, const ObjectScale& scale) {
    for (std::size_t axis = 0; axis < 3; ++axis)
        for (double& element : std::span(pose[static_cast<int>(axis)], 3))
            element *= scale.rowLengths[axis];
    return pose;
}

}  // namespace replay
