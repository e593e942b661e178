#include "headless/objects/spline_lines.h"

#include <cmath>
#include <numbers>

#include "headless/objects/bezier_segment.h"
#include "headless/values/vector.h"

namespace headless {
namespace {

constexpr int kStepsPerCurve = 16;
constexpr int kTubeSides = 6;

void AddPlace(std::vector<Point3>& line, const Point3& p) {
    if (IsFinite(p) && (line.empty() || !(line.back() == p))) line.push_back(p);
}

// Some direction across another; both have length 1.
Point3 Across(const Point3& direction) {
    const Point3 aside = std::abs(direction.z) < 0.9F ? Point3(0, 0, 1) : Point3(1, 0, 0);
    return Normalize(CrossProd(aside, direction));
}

// Along the line at one of its places: the middle of what comes and what goes on.
Point3 DirectionAt(const std::vector<Point3>& line, std::size_t i) {
    const Point3 in = i == 0 ? Point3() : Normalize(line[i] - line[i - 1]);
    const Point3 out = i + 1 == line.size() ? Point3() : Normalize(line[i + 1] - line[i]);
    const Point3 sum = in + out;
    return sum.Length() > 0 ? Normalize(sum) : Across(in);  // where the line turns back
}

// Flat, and without edges that show.
Face& AddFace(Mesh& mesh, int a, int b, int c) {
    Face& face = mesh.faces.emplace_back();
    face.setVerts(a, b, c);
    return face;
}

void AddSide(Mesh& mesh, int a, int b, int c) {
    Face& face = AddFace(mesh, a, b, c);
    face.setEdgeVisFlags(1, 1, 0);
    face.setSmGroup(1);
}

void AddRing(Mesh& mesh, const Point3& centre, const Point3& direction, const Point3& first,
             float radius) {
    const Point3 second = CrossProd(direction, first);
    for (int side = 0; side < kTubeSides; ++side) {
        const float angle = 2 * std::numbers::pi_v<float> * static_cast<float>(side) /
                            static_cast<float>(kTubeSides);
        mesh.verts.push_back(centre + first * (radius * std::cos(angle)) +
                             second * (radius * std::sin(angle)));
    }
}

// Two faces for each side of the stretch from the ring that starts at vertex `ring` to the next,
// smooth around the tube; the diagonal between them, the last edge of both, does not show.
void AddStretch(Mesh& mesh, int ring) {
    for (int side = 0; side < kTubeSides; ++side) {
        const int a = ring + side;
        const int b = ring + (side + 1) % kTubeSides;
        AddSide(mesh, a + kTubeSides, a, b);
        AddSide(mesh, b, b + kTubeSides, a + kTubeSides);
    }
}

void AddCaps(Mesh& mesh, int firstRing, int lastRing) {
    for (int side = 1; side + 1 < kTubeSides; ++side) {
        AddFace(mesh, firstRing, firstRing + side + 1, firstRing + side);
        AddFace(mesh, lastRing, lastRing + side, lastRing + side + 1);
    }
}

}  // namespace

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

// From ring to ring the direction of the first side turns no more than the line does.
void AddTube(const std::vector<Point3>& line, float radius, Mesh& mesh) {
    if (line.size() < 2) return;
    const int firstRing = mesh.getNumVerts();
    Point3 first = Across(DirectionAt(line, 0));
    for (std::size_t i = 0; i < line.size(); ++i) {
        const Point3 direction = DirectionAt(line, i);
        const Point3 carried = first - direction * DotProd(first, direction);
        first = carried.Length() > 0 ? Normalize(carried) : Across(direction);
        AddRing(mesh, line[i], direction, first, radius);
        if (i > 0) AddStretch(mesh, mesh.getNumVerts() - 2 * kTubeSides);
    }
    AddCaps(mesh, firstRing, mesh.getNumVerts() - kTubeSides);
}

}  // namespace headless
