#include <algorithm>
#include <cmath>
#include <limits>

#include "host/box3.h"
#include "host/point3.h"

float Point3::Length() const {
    return std::sqrt(x * x + y * y + z * z);
}

Point3 Point3::Normalize() const {
    const float length = Length();
    if (length == 0) return *this;
    return {x / length, y / length, z / length};
}

float Length(const Point3& p) {
    return p.Length();
}

Point3 Normalize(const Point3& p) {
    return p.Normalize();
}

float DotProd(const Point3& a, const Point3& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

Point3 CrossProd(const Point3& a, const Point3& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

namespace {

constexpr float kBeyondAll = std::numeric_limits<float>::max();

}  // namespace

Box3::Box3()
    : pmin(kBeyondAll, kBeyondAll, kBeyondAll), pmax(-kBeyondAll, -kBeyondAll, -kBeyondAll) {}

bool Box3::IsEmpty() const {
    return pmin.x > pmax.x || pmin.y > pmax.y || pmin.z > pmax.z;
}

Box3& Box3::operator+=(const Point3& p) {
    pmin = {std::min(pmin.x, p.x), std::min(pmin.y, p.y), std::min(pmin.z, p.z)};
    pmax = {std::max(pmax.x, p.x), std::max(pmax.y, p.y), std::max(pmax.z, p.z)};
    return *this;
}

Box3 Box3::operator*(const Matrix3& matrix) const {
    Box3 around;
    if (IsEmpty()) return around;
    for (int corner = 0; corner < 8; ++corner) {
        const Point3 p{(corner & 1) ? pmax.x : pmin.x, (corner & 2) ? pmax.y : pmin.y,
                       (corner & 4) ? pmax.z : pmin.z};
        around += matrix.PointTransform(p);
    }
    return around;
}
