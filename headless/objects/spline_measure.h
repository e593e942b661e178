#pragma once

#include <array>
#include <cstddef>
#include <vector>

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

// A place on a spline: a segment, and how far along it by its own parameter.
struct SplinePlace {
    std::size_t segment = 0;
    double u = 0;
};

// How far along a spline its places lie, within a millionth of its length: adaptive
// Gauss-Legendre quadrature of the speed, kept as a table of pieces, which Newton's method inverts
// (Guenter and Parent, "Computing the Arc Length of Parametric Curves", IEEE Computer Graphics and
// Applications 10(3), 1990). A segment that has no length, or none that is a number, is passed
// over. Good as long as the spline stays as it was.
class SplineMeasure {
  public:
    explicit SplineMeasure(const Spline& spline);

    double Length() const { return pieces_.empty() ? 0 : pieces_.back().lengthUpTo; }

    // Where so much of the length lies behind; an end of the spline for what lies outside.
    SplinePlace PlaceAt(const Spline& spline, double length) const;

  private:
    // A part of a segment that is so even that one quadrature measures any part of it.
    struct Piece {
        std::size_t segment;
        double from;  // of u
        double to;
        double length;
        double lengthUpTo;  // from the start of the spline to the end of the piece
    };
    void Split(const BezierSegment& curve, const Piece& piece, double tolerance, int depthLeft);
    void Add(Piece piece);

    std::vector<Piece> pieces_;
};

// Places along a spline whose straight connections show it: the knots, and between them further
// places where it is curved. A closed one comes back to its first. Places that are no numbers are
// left out.
std::vector<Point3> LinesAlong(const Spline& spline);

}  // namespace headless
