#pragma once

#include <cmath>
#include <cstdint>
#include <cstring>
#include <random>

#include "host/matrix3.h"
#include "measures/core_space.h"
#include "measures/quaternion.h"

// What faster forms have to give to the last bit, step by step as it is defined, and numbers to try
// it with.

// Whether they are the same numbers, of which a NaN is one and 0 and −0 are two.
template <class Number>
bool SameBits(Number a, Number b) {
    return std::memcmp(&a, &b, sizeof a) == 0 || (std::isnan(a) && std::isnan(b));
}
inline bool SameBits(const Matrix3& a, const Matrix3& b) {
    for (int i = 0; i < 12; ++i)
        if (!SameBits(a.m[i / 3][i % 3], b.m[i / 3][i % 3])) return false;
    return a.flags == b.flags;
}
inline bool SameBits(const TVL::CMatrix4& a, const TVL::CMatrix4& b) {
    for (int i = 0; i < 16; ++i)
        if (!SameBits(a[i / 4][i % 4], b[i / 4][i % 4])) return false;
    return true;
}

inline Matrix3 PlainProduct(const Matrix3& a, const Matrix3& b) {
    Matrix3 product;
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < 3; ++column) {
            float sum = a.m[row][0] * b.m[0][column];
            for (int k = 1; k < 3; ++k)
                sum += a.m[row][k] * b.m[k][column];
            product.m[row][column] = row == 3 ? sum + b.m[3][column] : sum;
        }
    product.ValidateFlags();
    return product;
}

inline Matrix3 PlainInverse(const Matrix3& matrix) {
    const auto& m = matrix.m;
    const auto cofactor = [&m](int row, int column) {
        const int r[] = {(row + 1) % 3, (row + 2) % 3};
        const int c[] = {(column + 1) % 3, (column + 2) % 3};
        return m[r[0]][c[0]] * m[r[1]][c[1]] - m[r[0]][c[1]] * m[r[1]][c[0]];
    };
    const float determinant =
        m[0][0] * cofactor(0, 0) + m[0][1] * cofactor(0, 1) + m[0][2] * cofactor(0, 2);
    Matrix3 inverse;
    for (int i = 0; i < 9; ++i)
        inverse.m[i / 3][i % 3] = cofactor(i % 3, i / 3) / determinant;
    const Point3 back = inverse.VectorTransform(matrix.GetTrans());
    inverse.SetRow(3, {-back.x, -back.y, -back.z});
    bool isFinite = determinant != 0;
    for (const auto& row : inverse.m)
        for (const float number : row)
            isFinite = isFinite && std::isfinite(number);
    if (!isFinite) return {};
    inverse.ValidateFlags();
    return inverse;
}

inline TVL::CMatrix4 PlainProduct(const TVL::CMatrix4& a, const TVL::CMatrix4& b) {
    TVL::CMatrix4 product = TVL::CMatrix4::Zero();
    for (int i = 0; i < 64; ++i)
        product[i / 16][i / 4 % 4] += a[i / 16][i % 4] * b[i % 4][i / 4 % 4];
    return product;
}

inline double PlainCofactor(const TVL::CMatrix4& m, int row, int column) {
    const auto at = [&](int i, int j) { return m[i < row ? i : i + 1][j < column ? j : j + 1]; };
    const auto below = [&](int a, int b) { return at(1, a) * at(2, b) - at(1, b) * at(2, a); };
    const double minor = at(0, 0) * below(1, 2) - at(0, 1) * below(0, 2) + at(0, 2) * below(0, 1);
    return (row + column) % 2 == 0 ? minor : -minor;
}

inline TVL::CMatrix4 PlainInverse(const TVL::CMatrix4& m) {
    double determinant = 0;
    for (int column = 0; column < 4; ++column)
        determinant += m[0][column] * PlainCofactor(m, 0, column);
    TVL::CMatrix4 inverse = TVL::CMatrix4::Zero();
    for (int i = 0; i < 16 && determinant != 0.0; ++i)
        inverse[i / 4][i % 4] = PlainCofactor(m, i % 4, i / 4) / determinant;
    return inverse;
}

inline Quaternion PlainRotation(TVL::CMatrix4 r) {
    for (double* row : {r[0], r[1], r[2]}) {
        const double length = std::sqrt(row[0] * row[0] + row[1] * row[1] + row[2] * row[2]);
        for (int i = 0; i < 3; ++i)
            row[i] = length == 0 ? i % 2 : row[i] / length;
    }
    double q[4] = {
        std::abs(1 + r[0][0] - r[1][1] - r[2][2]), std::abs(1 - r[0][0] + r[1][1] - r[2][2]),
        std::abs(1 - r[0][0] - r[1][1] + r[2][2]), std::abs(1 + r[0][0] + r[1][1] + r[2][2])};
    int greatest = 3;
    for (int i = 0; i < 3; ++i)
        if (q[i] > q[greatest]) greatest = i;
    const double s = 2 * std::sqrt(q[greatest]);
    for (int i = 0; i < 3; ++i) {
        const int j = (i + 1) % 3;
        const int k = (i + 2) % 3;
        q[i] = (greatest == 3 ? r[j][k] - r[k][j] : r[greatest][i] + r[i][greatest]) / s;
        if (i == greatest) q[3] = (r[j][k] - r[k][j]) / s;
    }
    q[greatest] = s * 0.25;
    const double squares = q[0] * q[0] + q[1] * q[1] + q[2] * q[2] + q[3] * q[3];
    for (double& part : q)
        part = squares == 0 ? &part == &q[3] : part / std::sqrt(squares);
    return WithPositiveW({q[0], q[1], q[2], q[3]});
}

// Scale, rotation and translation apart, from one matrix to another.
inline Matrix3 PlainBetween(const Matrix3& left, const Matrix3& right, float fraction) {
    const double wide = static_cast<double>(fraction);
    const TVL::CMatrix4 l = ToCore(left);
    const TVL::CMatrix4 r = ToCore(right);
    const Quaternion from = WithPositiveW(PlainRotation(l));
    const Quaternion to = WithPositiveW(PlainRotation(r));
    const RotationVector way = QuatLog(WithPositiveW(Conjugate(from) * to));
    const Quaternion step = QuatExp({way.x * wide, way.y * wide, way.z * wide});
    TVL::CMatrix4 placement = QuatToMatrix(WithPositiveW(from * step));
    for (int i = 0; i < 3; ++i)
        placement[3][i] = l[3][i] + (r[3][i] - l[3][i]) * wide;
    Matrix3 result = ToHost(placement);
    for (int row = 0; row < 3; ++row) {
        const float first = left.GetRow(row).Length();
        const float last = right.GetRow(row).Length();
        result.SetRow(row, result.GetRow(row).Normalize() * (first + (last - first) * fraction));
    }
    result.ValidateFlags();
    return result;
}

// Poses of all kinds: turned, mirrored, sheared, flat, without an end and no numbers at all.
template <class Random>
Matrix3 AnyMatrix(Random& random) {
    std::uniform_real_distribution<float> number(-2, 2);
    Matrix3 matrix;
    if (random() % 8 == 0) return matrix;
    if (random() % 2 == 0) matrix.SetRotate({0.48F, -0.6F, 0.64F * (random() % 2 ? 1 : -1), 0});
    for (auto& row : matrix.m)
        for (float& cell : row)
            cell += number(random) * (random() % 3 == 0 ? 0 : 1);
    const float odd[] = {0, -0.0F, 1e30F, INFINITY, -INFINITY, NAN, 1e-30F};
    for (unsigned count = random() % 16 == 0 ? 3 : 0; count > 0; --count)
        matrix.m[random() % 4][random() % 3] = odd[random() % 7];
    if (random() % 16 == 0) matrix.SetRow(static_cast<int>(random() % 3), {});
    if (random() % 16 == 0) matrix.SetRow(0, matrix.GetRow(1));
    matrix.ValidateFlags();
    return matrix;
}
