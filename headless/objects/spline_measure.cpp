#include "headless/objects/spline_measure.h"

#include <algorithm>
#include <cmath>

namespace headless {
namespace {

double LengthOf(const Vector& v) {
    return std::sqrt(Dot(v, v));
}

// Abscissas and weights of order 8, each for both signs (Abramowitz and Stegun, "Handbook of
// Mathematical Functions", table 25.4).
struct GaussPoint {
    double abscissa;
    double weight;
};
constexpr GaussPoint kGaussPoints[] = {{0.1834346424956498, 0.3626837833783620},
                                       {0.5255324099163290, 0.3137066458778873},
                                       {0.7966664774136267, 0.2223810344533745},
                                       {0.9602898564975363, 0.1012285362903763}};

// Relative to the segment. The depth is reached at a cusp alone, where what is left is as short.
constexpr double kSplitTolerance = 1e-8;
constexpr int kMostSplits = 20;

constexpr double kNewtonTolerance = 1e-10;  // relative to the piece
constexpr int kMostNewtonSteps = 60;        // as many halvings find any place in a double

double LengthBetween(const BezierSegment& curve, double from, double to) {
    const double middle = (from + to) / 2;
    const double half = (to - from) / 2;
    double sum = 0;
    for (const auto& [abscissa, weight] : kGaussPoints)
        sum += weight *
               (curve.SpeedAt(middle - half * abscissa) + curve.SpeedAt(middle + half * abscissa));
    return sum * half;
}

// Newton's method between two bounds that close in: where it would leave them, they are halved.
double ParameterAt(const BezierSegment& curve, double from, double to, double part,
                   double pieceLength) {
    const double wanted = part * pieceLength;
    double lower = from;
    double upper = to;
    double u = from + (to - from) * part;
    for (int step = 0; step < kMostNewtonSteps; ++step) {
        const double error = LengthBetween(curve, from, u) - wanted;
        if (std::abs(error) <= kNewtonTolerance * pieceLength) break;
        (error > 0 ? upper : lower) = u;
        const double next = u - error / curve.SpeedAt(u);
        u = next > lower && next < upper ? next : (lower + upper) / 2;
    }
    return u;
}

constexpr int kStepsPerCurve = 16;

void AddPlace(std::vector<Point3>& line, const Point3& p) {
    if (IsFinite(p) && (line.empty() || !(line.back() == p))) line.push_back(p);
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
    return Narrow(sum);
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

SplineMeasure::SplineMeasure(const Spline& spline) {
    for (std::size_t i = 0; i < SegmentCount(spline); ++i) {
        const BezierSegment curve = SegmentOf(spline, i);
        const double longest = curve.LengthOfHull();
        if (!std::isfinite(longest)) continue;
        if (curve.IsStraight())
            Add({i, 0, 1, longest, 0});
        else
            Split(curve, {i, 0, 1, LengthBetween(curve, 0, 1), 0}, longest * kSplitTolerance,
                  kMostSplits);
    }
}

void SplineMeasure::Split(const BezierSegment& curve, const Piece& piece, double tolerance,
                          int depthLeft) {
    const double middle = (piece.from + piece.to) / 2;
    const Piece first{piece.segment, piece.from, middle, LengthBetween(curve, piece.from, middle),
                      0};
    const Piece second{piece.segment, middle, piece.to, LengthBetween(curve, middle, piece.to), 0};
    if (depthLeft == 0 || std::abs(first.length + second.length - piece.length) <= tolerance) {
        Add(first);
        Add(second);
        return;
    }
    Split(curve, first, tolerance, depthLeft - 1);
    Split(curve, second, tolerance, depthLeft - 1);
}

void SplineMeasure::Add(Piece piece) {
    if (!(piece.length > 0)) return;
    piece.lengthUpTo = Length() + piece.length;
    pieces_.push_back(piece);
}

SplinePlace SplineMeasure::PlaceAt(const Spline& spline, double length) const {
    if (pieces_.empty()) return {};
    const auto found = std::lower_bound(
        pieces_.begin(), pieces_.end(), length,
        [](const Piece& piece, double wanted) { return piece.lengthUpTo < wanted; });
    if (found == pieces_.end()) return {pieces_.back().segment, pieces_.back().to};
    const double before = found->lengthUpTo - found->length;
    const double part = std::clamp((length - before) / found->length, 0.0, 1.0);
    const BezierSegment curve = SegmentOf(spline, found->segment);
    if (curve.IsStraight()) return {found->segment, part};
    return {found->segment, ParameterAt(curve, found->from, found->to, part, found->length)};
}

std::vector<Point3> LinesAlong(const Spline& spline) {
    std::vector<Point3> line;
    if (spline.knots.empty()) return line;
    AddPlace(line, spline.knots.front().place);
    for (std::size_t i = 0; i < SegmentCount(spline); ++i) {
        const BezierSegment curve = SegmentOf(spline, i);
        const int steps = curve.IsStraight() ? 1 : kStepsPerCurve;
        for (int step = 1; step <= steps; ++step)
            AddPlace(line, curve.At(static_cast<double>(step) / steps));
    }
    return line;
}

}  // namespace headless
