#include <cmath>
#include <limits>

#include "headless/values/vector.h"
#include "host/mesh.h"

namespace {

using headless::Vector;

// Share of a face's size by which a ray may pass outside it and still hit, so that no ray slips
// through between two faces.
constexpr double kEdgeTolerance = 1e-9;

// Share of the product of two edges below which a face has no area and so no side.
constexpr double kLeastSine = 1e-12;

struct RayHit {
    double distance = std::numeric_limits<double>::infinity();
    Vector normal;  // of any length
};

// The nearer of what was hit before and this face, if the ray hits it. T. Möller and B. Trumbore,
// Fast, Minimum Storage Ray/Triangle Intersection, 1997. In double, since in single precision the
// place of a hit on a finely divided mesh would be off by more than its facets are; comparisons
// with what is not a number fail, which makes a miss.
void MeetFace(const Vector& origin, const Vector& direction, const Vector& a, const Vector& b,
              const Vector& c, RayHit& nearest) {
    const Vector ab = b - a;
    const Vector ac = c - a;
    const Vector p = Cross(direction, ac);
    const double determinant = Dot(ab, p);
    if (determinant == 0) return;

    const Vector fromA = origin - a;
    const double u = Dot(fromA, p) / determinant;
    if (!(u >= -kEdgeTolerance && u <= 1 + kEdgeTolerance)) return;
    const Vector q = Cross(fromA, ab);
    const double v = Dot(direction, q) / determinant;
    if (!(v >= -kEdgeTolerance && u + v <= 1 + kEdgeTolerance)) return;
    const double distance = Dot(ac, q) / determinant;
    if (!(distance >= 0 && distance < nearest.distance)) return;

    const Vector normal = Cross(ab, ac);
    const double edges = Dot(ab, ab) * Dot(ac, ac);
    if (!(Dot(normal, normal) > kLeastSine * kLeastSine * edges)) return;
    nearest = {distance, normal};
}

}  // namespace

int Mesh::IntersectRay(const Ray& ray, float& at, Point3& norm) const {
    const Vector origin(ray.p);
    const Vector direction(ray.dir);
    RayHit nearest;
    for (const Face& face : faces) {
        const auto& [a, b, c] = face.v;
        if (a >= verts.size() || b >= verts.size() || c >= verts.size()) continue;
        MeetFace(origin, direction, Vector(verts[a]), Vector(verts[b]), Vector(verts[c]), nearest);
    }
    if (!(nearest.distance <= double{std::numeric_limits<float>::max()})) return 0;
    at = static_cast<float>(nearest.distance);
    norm = headless::UnitOf(nearest.normal);
    return 1;
}
