#pragma once

#include <cmath>

#include "host/point3.h"

namespace headless {

// A point or direction in double, for work whose rounding shows in single precision.
struct Vector {
    double x = 0;
    double y = 0;
    double z = 0;

    constexpr Vector() = default;
    constexpr Vector(double vx, double vy, double vz) : x(vx), y(vy), z(vz) {}
    constexpr explicit Vector(const Point3& p) : x(double{p.x}), y(double{p.y}), z(double{p.z}) {}

    friend constexpr Vector operator+(const Vector& a, const Vector& b) {
        return {a.x + b.x, a.y + b.y, a.z + b.z};
    }
    friend constexpr Vector operator-(const Vector& a, const Vector& b) {
        return {a.x - b.x, a.y - b.y, a.z - b.z};
    }
    friend constexpr Vector operator*(const Vector& v, double factor) {
        return {v.x * factor, v.y * factor, v.z * factor};
    }
};

constexpr double Dot(const Vector& a, const Vector& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

constexpr Vector Cross(const Vector& a, const Vector& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

inline bool IsFinite(const Point3& p) {
    return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
}

inline Point3 Narrow(const Vector& v) {
    return {static_cast<float>(v.x), static_cast<float>(v.y), static_cast<float>(v.z)};
}

// At length 1, in single precision; nothing of length 0 stays so.
inline Point3 UnitOf(const Vector& v) {
    const double length = std::sqrt(Dot(v, v));
    if (!(length > 0)) return {};
    return Narrow({v.x / length, v.y / length, v.z / length});
}

}  // namespace headless
