#include "replay_core/recorder/transform_parts.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <span>

#include "replay_core/recorder/geometry.h"
#include "replay_core/recorder/loans.h"

namespace replay {

namespace {

using Rows = std::array<Vector3, 3>;

constexpr std::array<double, 4> kNoRotation = {0, 0, 0, 1};

// The axes of length 1, at right angles and right-handed.
Rows Straightened(const Rows& rows) {
    const Vector3 x = Scaled(rows[0], 1 / Length(rows[0]));
    const double share = Dot(rows[1], x);
    const Vector3 across = {rows[1][0] - share * x[0], rows[1][1] - share * x[1],
                            rows[1][2] - share * x[2]};
    const Vector3 y = Scaled(across, 1 / Length(across));
    return {x, y, Cross(x, y)};
}

// For row vectors: axis i is where unit vector i goes.
std::array<double, 4> QuaternionOf(const Rows& axes) {
    const double trace = axes[0][0] + axes[1][1] + axes[2][2];
    const std::array<double, 4> diagonal = {axes[0][0], axes[1][1], axes[2][2], trace};
    const auto greatest =
        static_cast<std::size_t>(std::ranges::max_element(diagonal) - diagonal.begin());
    std::array<double, 4> q{};
    if (greatest == 3) {
        q = {axes[1][2] - axes[2][1], axes[2][0] - axes[0][2], axes[0][1] - axes[1][0], 1 + trace};
    } else {
        const std::size_t i = greatest;
        const std::size_t j = (i + 1) % 3;
        const std::size_t k = (i + 2) % 3;
        q[i] = 1 + axes[i][i] - axes[j][j] - axes[k][k];
        q[j] = axes[i][j] + axes[j][i];
        q[k] = axes[i][k] + axes[k][i];
        q[3] = axes[j][k] - axes[k][j];
    }
    const double length = std::hypot(std::hypot(q[0], q[1], q[2]), q[3]);
    const double factor = (q[3] < 0 ? -1 : 1) / length;
    for (double& part : q)
        part *= factor;
    return q;
}

}  // namespace

TransformParts PartsOf(const TVL::CMatrix4& transform) {
    Rows rows{};
    for (std::size_t i = 0; i < 3; ++i)
        std::copy_n(transform[static_cast<int>(i)], 3, rows[i].begin());
    TransformParts parts;
    std::copy_n(transform[3], 3, parts.translation.begin());
    const double volume = Dot(Cross(rows[0], rows[1]), rows[2]);
    const double sign = volume < 0 ? -1 : 1;
    for (std::size_t i = 0; i < 3; ++i) {
        parts.scale[i] = sign * Length(rows[i]);
        rows[i] = Scaled(rows[i], sign);
    }
    parts.rotation = volume == 0 ? kNoRotation : QuaternionOf(Straightened(rows));
    return parts;
}

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
