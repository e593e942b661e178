#include "host/mesh.h"

#include <cmath>
#include <cstddef>
#include <limits>

#include "headless/values/vector.h"

namespace {

constexpr std::uint32_t kEdgeVisible[3] = {1, 2, 4};  // bits of Face::flags

// A count below zero leaves the table as it is.
template <class T>
bool Resize(std::vector<T>& table, int count, int keep) {
    if (count < 0) return false;
    if (keep == 0) table.clear();
    table.resize(static_cast<std::size_t>(count));
    return true;
}

}  // namespace

void Face::setVerts(int a, int b, int c) {
    v[0] = static_cast<std::uint32_t>(a);
    v[1] = static_cast<std::uint32_t>(b);
    v[2] = static_cast<std::uint32_t>(c);
}

void Face::setEdgeVisFlags(int ab, int bc, int ca) {
    const int visible[3] = {ab, bc, ca};
    for (int edge = 0; edge < 3; ++edge) {
        if (visible[edge] != 0)
            flags |= kEdgeVisible[edge];
        else
            flags &= ~kEdgeVisible[edge];
    }
}

bool Face::getEdgeVis(int edge) const {
    return edge >= 0 && edge < 3 && (flags & kEdgeVisible[edge]) != 0;
}

void TVFace::setTVerts(int a, int b, int c) {
    t[0] = static_cast<std::uint32_t>(a);
    t[1] = static_cast<std::uint32_t>(b);
    t[2] = static_cast<std::uint32_t>(c);
}

bool Mesh::setNumVerts(int count, int keep, int) {
    return Resize(verts, count, keep);
}

bool Mesh::setNumFaces(int count, int keep, int) {
    return Resize(faces, count, keep);
}

bool Mesh::setNumTVerts(int count, int keep) {
    return Resize(tVerts, count, keep);
}

bool Mesh::setNumTVFaces(int count, int keep, int) {
    return Resize(tvFace, count, keep);
}

void Mesh::setVert(int index, const Point3& p) {
    verts[static_cast<std::size_t>(index)] = p;
}

void Mesh::setTVert(int index, const Point3& uvw) {
    tVerts[static_cast<std::size_t>(index)] = uvw;
}

void Mesh::EnableEdgeList(int enable) {
    edgeList_ = enable != 0;
}

// Nothing is derived from the tables and kept, so there is nothing to drop.
void Mesh::InvalidateGeomCache() {}

void Mesh::FreeAll() {
    *this = Mesh();
}

Box3 Mesh::getBoundingBox(const Matrix3* matrix) const {
    Box3 box;
    for (const Point3& p : verts)
        box += matrix ? matrix->PointTransform(p) : p;
    return box;
}

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
