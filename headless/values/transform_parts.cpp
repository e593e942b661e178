#include "headless/values/transform_parts.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace headless {
namespace {

using Axis = std::array<double, 3>;
using Axes = std::array<Axis, 3>;

constexpr Axes kStraight{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};

Axis Cross(const Axis& a, const Axis& b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

double Dot(const Axis& a, const Axis& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

Axis Over(const Axis& axis, double divisor) {
    return {axis[0] / divisor, axis[1] / divisor, axis[2] / divisor};
}

Axes RowsOf(const Matrix3& matrix) {
    Axes rows;
    for (std::size_t row = 0; row < 3; ++row)
        for (std::size_t column = 0; column < 3; ++column)
            rows[row][column] = matrix.m[row][column];
    return rows;
}

// Right-handed axes of length 1.
Axes DirectionsOf(const Axes& rows, const Axis& scale) {
    const auto missing = std::count(scale.begin(), scale.end(), 0.0);
    if (missing > 1) return kStraight;
    Axes axes;
    for (std::size_t i = 0; i < 3; ++i)
        if (scale[i] != 0) axes[i] = Over(rows[i], scale[i]);
    for (std::size_t i = 0; i < 3; ++i) {
        if (scale[i] != 0) continue;
        const Axis across = Cross(axes[(i + 1) % 3], axes[(i + 2) % 3]);
        const double length = std::sqrt(Dot(across, across));
        if (length == 0) return kStraight;
        axes[i] = Over(across, length);
    }
    return axes;
}

// The greatest of the four components, times four and squared, decides which of them is divided by.
Quat RotationOf(const Axes& r) {
    const std::array<double, 4> sums{
        1 + r[0][0] + r[1][1] + r[2][2], 1 + r[0][0] - r[1][1] - r[2][2],
        1 - r[0][0] + r[1][1] - r[2][2], 1 - r[0][0] - r[1][1] + r[2][2]};
    const auto greatest = std::max_element(sums.begin(), sums.end()) - sums.begin();
    std::array<double, 4> q;  // x, y, z, w, each four times the sum's root
    if (greatest == 0)
        q = {r[1][2] - r[2][1], r[2][0] - r[0][2], r[0][1] - r[1][0], sums[0]};
    else if (greatest == 1)
        q = {sums[1], r[1][0] + r[0][1], r[0][2] + r[2][0], r[1][2] - r[2][1]};
    else if (greatest == 2)
        q = {r[1][0] + r[0][1], sums[2], r[2][1] + r[1][2], r[2][0] - r[0][2]};
    else
        q = {r[0][2] + r[2][0], r[2][1] + r[1][2], sums[3], r[0][1] - r[1][0]};

    const double length = std::sqrt(q[0] * q[0] + q[1] * q[1] + q[2] * q[2] + q[3] * q[3]);
    const double divisor = q[3] < 0 ? -length : length;
    if (!(length > 0)) return {};
    return {static_cast<float>(q[0] / divisor), static_cast<float>(q[1] / divisor),
            static_cast<float>(q[2] / divisor), static_cast<float>(q[3] / divisor)};
}

Axes AxesOf(const Quat& rotation) {
    const double x = rotation.x, y = rotation.y, z = rotation.z, w = rotation.w;
    return {{{x * x - y * y - z * z + w * w, 2 * (x * y + w * z), 2 * (z * x - w * y)},
             {2 * (x * y - w * z), y * y - x * x - z * z + w * w, 2 * (w * x + z * y)},
             {2 * (z * x + w * y), 2 * (z * y - w * x), z * z - x * x - y * y + w * w}}};
}

Point3 Narrow(const Axis& axis) {
    return {static_cast<float>(axis[0]), static_cast<float>(axis[1]), static_cast<float>(axis[2])};
}

}  // namespace

TransformParts Decompose(const Matrix3& matrix) {
    const Axes rows = RowsOf(matrix);
    const double sign = Dot(rows[0], Cross(rows[1], rows[2])) < 0 ? -1 : 1;
    Axis scale;
    for (std::size_t i = 0; i < 3; ++i)
        scale[i] = sign * std::sqrt(Dot(rows[i], rows[i]));
    return {matrix.GetTrans(), RotationOf(DirectionsOf(rows, scale)), Narrow(scale)};
}

Matrix3 Compose(const TransformParts& parts) {
    const Axes axes = AxesOf(parts.rotation);
    const Axis scale{parts.scale.x, parts.scale.y, parts.scale.z};
    Matrix3 matrix;
    for (std::size_t i = 0; i < 3; ++i) {
        const Axis row{axes[i][0] * scale[i], axes[i][1] * scale[i], axes[i][2] * scale[i]};
        matrix.SetRow(static_cast<int>(i), Narrow(row));
    }
    matrix.SetRow(3, parts.position);
    matrix.ValidateFlags();
    return matrix;
}

}  // namespace headless
