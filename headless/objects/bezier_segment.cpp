#include "headless/objects/bezier_segment.h"

#include <cmath>

namespace headless {
namespace {

double LengthOf(const Vector& v) {
    return std::sqrt(Dot(v, v));
}

}  // namespace

BezierSegment::BezierSegment(const Knot& from, const Knot& to)
    : hull_{Vector(from.place), Vector(from.out), Vector(to.in), Vector(to.place)},
      isStraight_(from.out == from.place && to.in == to.place) {}

Point3 BezierSegment::At(double u) const {
    const double v = 1 - u;
    const std::array<double, 4> weights =
        isStraight_ ? std::array<double, 4>{v, 0, 0, u}
                    : std::array<double, 4>{v * v * v, 3 * v * v * u, 3 * v * u * u, u * u * u};
    Vector sum;
    for (std::size_t i = 0; i < 4; ++i)
        sum = sum + hull_[i] * weights[i];
    return {static_cast<float>(sum.x), static_cast<float>(sum.y), static_cast<float>(sum.z)};
}

double BezierSegment::SpeedAt(double u) const {
    if (isStraight_) return LengthOfHull();
    const double v = 1 - u;
    const std::array<double, 3> weights{3 * v * v, 6 * v * u, 3 * u * u};
    Vector sum;
    for (std::size_t i = 0; i < 3; ++i)
        sum = sum + (hull_[i + 1] - hull_[i]) * weights[i];
    return LengthOf(sum);
}

double BezierSegment::LengthOfHull() const {
    double length = 0;
    for (std::size_t i = 0; i < 3; ++i)
        length += LengthOf(hull_[i + 1] - hull_[i]);
    return length;
}

std::size_t SegmentCount(const Spline& spline) {
    const std::size_t knots = spline.knots.size();
    return spline.isClosed || knots == 0 ? knots : knots - 1;
}

BezierSegment SegmentOf(const Spline& spline, std::size_t index) {
    return {spline.knots[index], spline.knots[(index + 1) % spline.knots.size()]};
}

}  // namespace headless
