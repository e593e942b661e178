#include "headless/values/transform_parts.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "headless/values/vector.h"

namespace headless {
namespace {

// Beyond this cosine the arc is so short that the chord is as good, and its sine is not divided by.
constexpr double kAlmostEqual = 1 - 1e-9;

Quat Unit(double x, double y, double z, double w) {
    const double length = std::sqrt(x * x + y * y + z * z + w * w);
    if (!(length > 0)) return {};
    return {static_cast<float>(x / length), static_cast<float>(y / length),
            static_cast<float>(z / length), static_cast<float>(w / length)};
}

using Axes = std::array<Vector, 3>;

constexpr Axes kStraight{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};

Vector Over(const Vector& axis, double divisor) {
    return {axis.x / divisor, axis.y / divisor, axis.z / divisor};
}

// Right-handed axes of length 1.
Axes DirectionsOf(const Axes& rows, const std::array<double, 3>& scale) {
    const auto missing = std::count(scale.begin(), scale.end(), 0.0);
    if (missing > 1) return kStraight;
    Axes axes;
    for (std::size_t i = 0; i < 3; ++i)
        if (scale[i] != 0) axes[i] = Over(rows[i], scale[i]);
    for (std::size_t i = 0; i < 3; ++i) {
        if (scale[i] != 0) continue;
        const Vector across = Cross(axes[(i + 1) % 3], axes[(i + 2) % 3]);
        const double length = std::sqrt(Dot(across, across));
        if (length == 0) return kStraight;
        axes[i] = Over(across, length);
    }
    return axes;
}

// The greatest of the four components, times four and squared, decides which of them is divided by.
Quat RotationOf(const Axes& axes) {
    const auto& [x, y, z] = axes;
    const std::array<double, 4> sums{1 + x.x + y.y + z.z, 1 + x.x - y.y - z.z, 1 - x.x + y.y - z.z,
                                     1 - x.x - y.y + z.z};
    const auto greatest = std::max_element(sums.begin(), sums.end()) - sums.begin();
    std::array<double, 4> q;  // x, y, z, w, each times four and the greatest of them
    if (greatest == 0)
        q = {y.z - z.y, z.x - x.z, x.y - y.x, sums[0]};
    else if (greatest == 1)
        q = {sums[1], y.x + x.y, x.z + z.x, y.z - z.y};
    else if (greatest == 2)
        q = {y.x + x.y, sums[2], z.y + y.z, z.x - x.z};
    else
        q = {x.z + z.x, z.y + y.z, sums[3], x.y - y.x};

    const double sign = q[3] < 0 ? -1 : 1;
    return Unit(sign * q[0], sign * q[1], sign * q[2], sign * q[3]);
}

Axes AxesOf(const Quat& rotation) {
    const double x = rotation.x, y = rotation.y, z = rotation.z, w = rotation.w;
    return {{{x * x - y * y - z * z + w * w, 2 * (x * y + w * z), 2 * (z * x - w * y)},
             {2 * (x * y - w * z), y * y - x * x - z * z + w * w, 2 * (w * x + z * y)},
             {2 * (z * x + w * y), 2 * (z * y - w * x), z * z - x * x - y * y + w * w}}};
}

}  // namespace

Quat Then(const Quat& a, const Quat& b) {
    const double ax = a.x, ay = a.y, az = a.z, aw = a.w;
    const double bx = b.x, by = b.y, bz = b.z, bw = b.w;
    return Unit(bw * ax + aw * bx + by * az - bz * ay, bw * ay + aw * by + bz * ax - bx * az,
                bw * az + aw * bz + bx * ay - by * ax, bw * aw - bx * ax - by * ay - bz * az);
}

Quat Opposite(const Quat& q) {
    return {-q.x, -q.y, -q.z, q.w};
}

Quat Slerp(const Quat& a, const Quat& b, double f) {
    const double ax = a.x, ay = a.y, az = a.z, aw = a.w;
    const double cosine = ax * b.x + ay * b.y + az * b.z + aw * b.w;
    const double shorter = cosine < 0 ? -1 : 1;
    double partOfA = 1 - f;
    double partOfB = f * shorter;
    if (std::abs(cosine) < kAlmostEqual) {
        const double angle = std::acos(std::abs(cosine));
        partOfA = std::sin((1 - f) * angle) / std::sin(angle);
        partOfB = std::sin(f * angle) / std::sin(angle) * shorter;
    }
    return Unit(partOfA * ax + partOfB * b.x, partOfA * ay + partOfB * b.y,
                partOfA * az + partOfB * b.z, partOfA * aw + partOfB * b.w);
}

TransformParts Decompose(const Matrix3& matrix) {
    const Axes rows{Vector(matrix.GetRow(0)), Vector(matrix.GetRow(1)), Vector(matrix.GetRow(2))};
    const double sign = Dot(rows[0], Cross(rows[1], rows[2])) < 0 ? -1 : 1;
    std::array<double, 3> scale;
    for (std::size_t i = 0; i < 3; ++i)
        scale[i] = sign * std::sqrt(Dot(rows[i], rows[i]));
    return {matrix.GetTrans(), RotationOf(DirectionsOf(rows, scale)),
            Narrow({scale[0], scale[1], scale[2]})};
}

Matrix3 Compose(const TransformParts& parts) {
    const Axes axes = AxesOf(parts.rotation);
    Matrix3 matrix;
    matrix.SetRow(0, Narrow(axes[0] * double{parts.scale.x}));
    matrix.SetRow(1, Narrow(axes[1] * double{parts.scale.y}));
    matrix.SetRow(2, Narrow(axes[2] * double{parts.scale.z}));
    matrix.SetRow(3, parts.position);
    matrix.ValidateFlags();
    return matrix;
}

}  // namespace headless
