#include "objects/bezier_segment.h"

#include <cmath>

namespace headless {
namespace {

double LengthOf(const std::array<double, 3>& v) {
    return std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
}

std::array<double, 3> Between(const std::array<double, 3>& from, const std::array<double, 3>& to) {
    return {to[0] - from[0], to[1] - from[1], to[2] - from[2]};
}

}  // namespace

BezierSegment::BezierSegment(const Knot& from, const Knot& to)
    : hull_{Widened(from.place), Widened(from.out), Widened(to.in), Widened(to.place)},
      isStraight_(from.out == from.place && to.in == to.place) {}

Point3 BezierSegment::At(double u) const {
    const double v = 1 - u;
    const std::array<double, 4> weights =
        isStraight_ ? std::array<double, 4>{v, 0, 0, u}
                    : std::array<double, 4>{v * v * v, 3 * v * v * u, 3 * v * u * u, u * u * u};
    Place sum{};
    for (std::size_t axis = 0; axis < 3; ++axis) {
        for (std::size_t i = 0; i < 4; ++i)
            sum[axis] += weights[i] * hull_[i][axis];
    }
    return {static_cast<float>(sum[0]), static_cast<float>(sum[1]), static_cast<float>(sum[2])};
}

double BezierSegment::SpeedAt(double u) const {
    if (isStraight_) return LengthOfHull();
    const double v = 1 - u;
    const std::array<double, 3> weights{3 * v * v, 6 * v * u, 3 * u * u};
    Place sum{};
    for (std::size_t i = 0; i < 3; ++i) {
        const Place leg = Between(hull_[i], hull_[i + 1]);
        for (std::size_t axis = 0; axis < 3; ++axis)
            sum[axis] += weights[i] * leg[axis];
    }
    return LengthOf(sum);
}

double BezierSegment::LengthOfHull() const {
    double length = 0;
    for (std::size_t i = 0; i < 3; ++i)
        length += LengthOf(Between(hull_[i], hull_[i + 1]));
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
