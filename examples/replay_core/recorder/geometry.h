#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

#include "tvl/matrix4.h"

namespace replay {

// Points and directions, in whatever space and unit they are said to be.
using Vector3 = std::array<double, 3>;

inline Vector3 Sum(const Vector3& a, const Vector3& b) {
    return {a[0] + b[0], a[1] + b[1], a[2] + b[2]};
}
inline Vector3 Difference(const Vector3& a, const Vector3& b) {
    return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}
inline Vector3 Scaled(const Vector3& a, double factor) {
    return {a[0] * factor, a[1] * factor, a[2] * factor};
}
inline double Dot(const Vector3& a, const Vector3& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}
inline Vector3 Cross(const Vector3& a, const Vector3& b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}
inline double Length(const Vector3& a) {
    return std::hypot(a[0], a[1], a[2]);
}

// A unit vector at right angles to one: across from the axis that is the farthest off, so that
// nothing comes near zero.
inline Vector3 AcrossFrom(const Vector3& unit) {
    const auto isNearer = [](double a, double b) { return std::abs(a) < std::abs(b); };
    Vector3 axis{};
    axis[static_cast<std::size_t>(std::ranges::min_element(unit, isNearer) - unit.begin())] = 1;
    const Vector3 across = Cross(unit, axis);
    return Scaled(across, 1 / Length(across));
}

// Where the matrix puts the origin.
inline Vector3 PlaceOf(const TVL::CMatrix4& matrix) {
    return {matrix[3][0], matrix[3][1], matrix[3][2]};
}

// For row vectors: a point goes through the whole matrix, a direction leaves the translation out.
inline Vector3 DirectionThrough(const Vector3& direction, const TVL::CMatrix4& matrix) {
    Vector3 result{};
    for (std::size_t column = 0; column < result.size(); ++column)
        for (std::size_t row = 0; row < direction.size(); ++row)
            result[column] +=
                direction[row] * matrix[static_cast<int>(row)][static_cast<int>(column)];
    return result;
}
inline Vector3 PointThrough(const Vector3& point, const TVL::CMatrix4& matrix) {
    return Sum(DirectionThrough(point, matrix), PlaceOf(matrix));
}

}  // namespace replay
