#pragma once

#include <cstddef>
#include <vector>

#include "headless/objects/bezier_segment.h"

namespace headless {

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

}  // namespace headless
