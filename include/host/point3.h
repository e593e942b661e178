#pragma once

#include <cmath>

#include "host/host_api.h"

// Three floats: a point, a direction, a scale.
struct HOST_API Point3 {
    float x = 0;
    float y = 0;
    float z = 0;

    constexpr Point3() = default;
    constexpr Point3(float px, float py, float pz) : x(px), y(py), z(pz) {}

    float Length() const { return std::sqrt(x * x + y * y + z * z); }

    // A point of length 0 stays as it is.
    Point3 Normalize() const {
        const float length = Length();
        if (length == 0) return *this;
        return {x / length, y / length, z / length};
    }

    friend constexpr Point3 operator+(const Point3& a, const Point3& b) {
        return {a.x + b.x, a.y + b.y, a.z + b.z};
    }
    friend constexpr Point3 operator-(const Point3& a, const Point3& b) {
        return {a.x - b.x, a.y - b.y, a.z - b.z};
    }
    friend constexpr Point3 operator*(const Point3& p, float factor) {
        return {p.x * factor, p.y * factor, p.z * factor};
    }
    friend constexpr bool operator==(const Point3&, const Point3&) = default;
};

HOST_API float Length(const Point3& p);
HOST_API Point3 Normalize(const Point3& p);

constexpr float DotProd(const Point3& a, const Point3& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}
constexpr Point3 CrossProd(const Point3& a, const Point3& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

// A half line. The direction need not have unit length; distances along it count in its lengths.
struct Ray {
    Point3 p;
    Point3 dir;
};
