#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

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

inline void ExpectNear(const Matrix3& actual, const Matrix3& expected, float tolerance) {
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < 3; ++column)
            EXPECT_NEAR(actual.m[row][column], expected.m[row][column], tolerance)
                << "row " << row << ", column " << column;
}
