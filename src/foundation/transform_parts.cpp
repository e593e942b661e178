#include "tvl/transform_parts.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace TVL {
namespace {

using Vector3 = std::array<double, 3>;
using Rows = std::array<Vector3, 3>;

Vector3 Scaled(const Vector3& a, double factor) {
    return {a[0] * factor, a[1] * factor, a[2] * factor};
}

double Dot(const Vector3& a, const Vector3& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

Vector3 Cross(const Vector3& a, const Vector3& b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

double Length(const Vector3& a) {
    return std::hypot(a[0], a[1], a[2]);
}

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
    if (!std::isfinite(length)) return {0, 0, 0, 1};
    const double factor = (q[3] < 0 ? -1 : 1) / length;
    for (double& part : q)
        part *= factor;
    return q;
}

}  // namespace

TransformParts PartsOf(const CMatrix4& transform) {
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
    if (volume != 0) parts.rotation = QuaternionOf(Straightened(rows));
    return parts;
}

}  // namespace TVL
