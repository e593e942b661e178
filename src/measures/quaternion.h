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
inline Quaternion operator*(const Quaternion& p, const Quaternion& q) {
    return {p.w * q.x + q.w * p.x + p.y * q.z - p.z * q.y,
            p.w * q.y + q.w * p.y + p.z * q.x - p.x * q.z,
            p.w * q.z + q.w * p.z + p.x * q.y - p.y * q.x,
            p.w * q.w - p.x * q.x - p.y * q.y - p.z * q.z};
}

inline Quaternion Conjugate(const Quaternion& q) {
    return {-q.x, -q.y, -q.z, q.w};
}

// Of q and −q, which are the same rotation, the one whose w is not negative.
inline Quaternion WithPositiveW(const Quaternion& q) {
    return q.w < 0 ? -q : q;
}

// The rotation of the upper three rows, by the greatest of four sums of the diagonal. Rows are
// normalised first; one of length 0 counts as (0, 1, 0).
Quaternion QuatFromMatrix(const TVL::CMatrix4& matrix);

// The rotation vector of a unit quaternion, on the shorter way round.
RotationVector QuatLog(const Quaternion& q);

// The unit quaternion of a rotation vector.
Quaternion QuatExp(const RotationVector& r);

// The matrix of a unit quaternion, for row vectors; the translation is 0.
inline TVL::CMatrix4 QuatToMatrix(const Quaternion& q) {
    const double x = q.x;
    const double y = q.y;
    const double z = q.z;
    const double w = q.w;
    return {{{x * x - y * y - z * z + w * w, 2 * (x * y + w * z), 2 * (z * x - w * y), 0},
             {2 * (x * y - w * z), y * y - x * x - z * z + w * w, 2 * (w * x + z * y), 0},
             {2 * (z * x + w * y), 2 * (z * y - w * x), z * z - x * x - y * y + w * w, 0},
             {0, 0, 0, 1}}};
}
