#pragma once

#include <algorithm>
#include <cmath>

#include "tvl/matrix4.h"

// A rotation as four doubles. The order of every sum and product in the functions below is part of
// what they are: the poses between two keys depend on it to the last bit. An evaluation is a chain
// of them, each waiting for the one before, so that they are all here to be put into one another.
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

// The identity if there is nothing to normalise.
inline Quaternion Normalized(const Quaternion& q) {
    const double squares = q.x * q.x + q.y * q.y + q.z * q.z + q.w * q.w;
    if (squares == 0.0) return {};
    const double length = std::sqrt(squares);
    return {q.x / length, q.y / length, q.z / length, q.w / length};
}

// A row of a matrix, brought to length 1; one of length 0 counts as (0, 1, 0).
struct UnitRow {
    explicit UnitRow(const double* row) {
        const double length = std::sqrt(row[0] * row[0] + row[1] * row[1] + row[2] * row[2]);
        if (length == 0.0) return;
        x = row[0] / length;
        y = row[1] / length;
        z = row[2] / length;
    }
    double x = 0;
    double y = 1;
    double z = 0;
};

// The rotation of three rows before it is normalised, by the greatest of four sums of the diagonal.
// Small turns, which are usual, have the first.
inline Quaternion FromUnitRows(const UnitRow& r0, const UnitRow& r1, const UnitRow& r2) {
    const double sums[4] = {std::abs(1 + r0.x + r1.y + r2.z), std::abs(1 + r0.x - r1.y - r2.z),
                            std::abs(1 - r0.x + r1.y - r2.z), std::abs(1 - r0.x - r1.y + r2.z)};
    int greatest = 0;
    for (int i = 1; i < 4; ++i) {
        if (sums[i] > sums[greatest]) [[unlikely]]
            greatest = i;
    }
    const double s = 2 * std::sqrt(sums[greatest]);
    switch (greatest) {
        case 0:
            return {(r1.z - r2.y) / s, (r2.x - r0.z) / s, (r0.y - r1.x) / s, s * 0.25};
        case 1:
            return {s * 0.25, (r1.x + r0.y) / s, (r0.z + r2.x) / s, (r1.z - r2.y) / s};
        case 2:
            return {(r1.x + r0.y) / s, s * 0.25, (r2.y + r1.z) / s, (r2.x - r0.z) / s};
        default:
            return {(r0.z + r2.x) / s, (r2.y + r1.z) / s, s * 0.25, (r0.y - r1.x) / s};
    }
}

// The rotation of the upper three rows.
inline Quaternion QuatFromMatrix(const TVL::CMatrix4& matrix) {
    const Quaternion rotation =
        FromUnitRows(UnitRow(matrix[0]), UnitRow(matrix[1]), UnitRow(matrix[2]));
    return WithPositiveW(Normalized(rotation));
}

// The rotation vector of a unit quaternion, on the shorter way round.
inline RotationVector QuatLog(const Quaternion& q) {
    const Quaternion p = WithPositiveW(q);
    const double angle = 2 * std::acos(std::clamp(p.w, -1.0, 1.0));
    if (angle == 0.0) return {};
    const double sine = std::sin(angle / 2);
    return {p.x * angle / sine, p.y * angle / sine, p.z * angle / sine};
}

// The unit quaternion of a rotation vector.
inline Quaternion QuatExp(const RotationVector& r) {
    const double angle = std::sqrt(r.x * r.x + r.y * r.y + r.z * r.z);
    if (angle == 0.0) return {};
    const double sine = std::sin(angle / 2);
    return {r.x / angle * sine, r.y / angle * sine, r.z / angle * sine, std::cos(angle / 2)};
}

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
