#include "headless/values/rotation.h"

#include <cmath>

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

}  // namespace headless
