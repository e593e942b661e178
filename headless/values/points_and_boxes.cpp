#include <algorithm>
#include <limits>

#include "host/box3.h"
#include "host/point3.h"

float Length(const Point3& p) {
    return p.Length();
}

Point3 Normalize(const Point3& p) {
    return p.Normalize();
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
