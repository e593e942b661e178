#pragma once

#include "tvl/matrix4.h"

// A rotation as four doubles. The order of every sum and product in the functions below is part of
// what they are: the poses between two keys depend on it to the last bit.
struct Quaternion {
    double x = 0;
    double y = 0;
    double z = 0;
    double w = 1;

    Quaternion operator-() const { return {-x, -y, -z, -w}; }
};

// The axis of a rotation, its length being the angle in radians.
struct RotationVector {
    double x = 0;
    double y = 0;
    double z = 0;
};

// The Hamilton product.
Quaternion operator*(const Quaternion& p, const Quaternion& q);

Quaternion Conjugate(const Quaternion& q);

// Of q and −q, which are the same rotation, the one whose w is not negative.
Quaternion WithPositiveW(const Quaternion& q);

// The rotation of the upper three rows, by the greatest of four sums of the diagonal. Rows are
// normalised first; one of length 0 counts as (0, 1, 0).
Quaternion QuatFromMatrix(const TVL::CMatrix4& matrix);

// The rotation vector of a unit quaternion, on the shorter way round.
RotationVector QuatLog(const Quaternion& q);

// The unit quaternion of a rotation vector.
Quaternion QuatExp(const RotationVector& r);

// The matrix of a unit quaternion, for row vectors; the translation is 0.
TVL::CMatrix4 QuatToMatrix(const Quaternion& q);
