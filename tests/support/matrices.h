#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <string>

#include "host/matrix3.h"

// Matrices that tests are made of.

inline Matrix3 MovedBy(const Point3& offset) {
    Matrix3 matrix;
    matrix.SetTranslate(offset);
    return matrix;
}

inline Matrix3 MovedBy(float x) {
    return MovedBy(Point3(x, 0, 0));
}

inline Quat AboutZ(double degrees) {
    const double half = degrees / 2 * std::numbers::pi / 180;
    return {0, 0, static_cast<float>(std::sin(half)), static_cast<float>(std::cos(half))};
}

inline Matrix3 TurnedAboutZ(double degrees) {
    Matrix3 matrix;
    matrix.SetRotate(AboutZ(degrees));
    return matrix;
}

// Both hold to 1e-5 unless a test says otherwise. A value is a point or a quaternion.

template <class Value>
requires requires(const Value& value) {
    value.z;
}
void ExpectNear(const Value& actual, const Value& expected, double tolerance = 1e-5) {
    EXPECT_NEAR(actual.x, expected.x, tolerance);
    EXPECT_NEAR(actual.y, expected.y, tolerance);
    EXPECT_NEAR(actual.z, expected.z, tolerance);
    if constexpr (requires { actual.w; }) {
        EXPECT_NEAR(actual.w, expected.w, tolerance);
    }
}

inline void ExpectNear(const Matrix3& actual, const Matrix3& expected, double tolerance = 1e-5) {
    for (int row = 0; row < 4; ++row) {
        SCOPED_TRACE("row " + std::to_string(row));
        ExpectNear(actual.GetRow(row), expected.GetRow(row), tolerance);
    }
}
