#pragma once

#include <array>
#include <cstddef>

#include "headless/primitives.h"
#include "headless/values/vector.h"

namespace headless {

// One segment of a spline: a cubic Bézier curve from u = 0 to u = 1, worked out in double. On a
// straight line u is the part of the line that lies behind, whatever the cubic says.
class BezierSegment {
  public:
    BezierSegment(const Knot& from, const Knot& to);

    bool IsStraight() const { return isStraight_; }
    Point3 At(double u) const;
    double SpeedAt(double u) const;  // how much length passes as u does

    // Not shorter than the segment.
    double LengthOfHull() const;

  private:
    std::array<Vector, 4> hull_;  // its two ends, and between them the handles
    bool isStraight_;
};

// A closed spline has a segment for each knot, an open one a segment less.
std::size_t SegmentCount(const Spline& spline);
BezierSegment SegmentOf(const Spline& spline, std::size_t index);

}  // namespace headless
