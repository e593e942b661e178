#include "host/point3.h"

#include <cmath>

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
