#include "host/matrix3.h"

#include <cmath>

// Everything here is single precision, each sum from left to right, so that the same matrices give
// the same bits on every machine. Every operation that makes a whole matrix ends with
// ValidateFlags; the flags say what the numbers are and no operation asks them.
namespace {

// How far the square of a row's length may lie from 1 for the row to count as unscaled.
constexpr float kUnitRowTolerance = 1e-6F;

bool IsUnitRow(const float* row) {
    const float square = row[0] * row[0] + row[1] * row[1] + row[2] * row[2];
    return std::abs(square - 1) <= kUnitRowTolerance;
}

// The minor that is left when row and column are struck out, with its sign.
float Cofactor(const float m[4][3], int row, int column) {
    const int r1 = (row + 1) % 3;
    const int r2 = (row + 2) % 3;
    const int c1 = (column + 1) % 3;
    const int c2 = (column + 2) % 3;
    return m[r1][c1] * m[r2][c2] - m[r1][c2] * m[r2][c1];
}

bool IsFinite(const Matrix3& matrix) {
    for (const auto& row : matrix.m)
        for (const float number : row)
            if (!std::isfinite(number)) return false;
    return true;
}

}  // namespace

Matrix3::Matrix3() {
    IdentityMatrix();
}

Matrix3::Matrix3(const Point3& row0, const Point3& row1, const Point3& row2, const Point3& row3) {
    SetRow(0, row0);
    SetRow(1, row1);
    SetRow(2, row2);
    SetRow(3, row3);
    ValidateFlags();
}

void Matrix3::IdentityMatrix() {
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < 3; ++column)
            m[row][column] = row == column ? 1.0F : 0.0F;
    flags = kPositionIdentity | kRotationIdentity | kScaleIdentity;
}

Point3 Matrix3::GetRow(int row) const {
    return {m[row][0], m[row][1], m[row][2]};
}

void Matrix3::SetRow(int row, const Point3& value) {
    m[row][0] = value.x;
    m[row][1] = value.y;
    m[row][2] = value.z;
}

void Matrix3::SetTranslate(const Point3& offset) {
    IdentityMatrix();
    SetRow(3, offset);
    ValidateFlags();
}

void Matrix3::SetRotate(const Quat& q) {
    const auto [x, y, z, w] = q;
    SetRow(0, {x * x - y * y - z * z + w * w, 2 * (x * y + w * z), 2 * (z * x - w * y)});
    SetRow(1, {2 * (x * y - w * z), y * y - x * x - z * z + w * w, 2 * (w * x + z * y)});
    SetRow(2, {2 * (z * x + w * y), 2 * (z * y - w * x), z * z - x * x - y * y + w * w});
    SetRow(3, {});
    ValidateFlags();
}

void Matrix3::Scale(const Point3& factors, bool scaleTranslation) {
    for (int row = 0; row < (scaleTranslation ? 4 : 3); ++row) {
        m[row][0] *= factors.x;
        m[row][1] *= factors.y;
        m[row][2] *= factors.z;
    }
    ValidateFlags();
}

// Position: row 3 is zero. Rotation: the axes lie on the host's, pointing the same way. Scale: the
// three axes have length 1.
void Matrix3::ValidateFlags() {
    flags = 0;
    if (GetRow(3) == Point3()) flags |= kPositionIdentity;
    const bool straight = m[0][1] == 0 && m[0][2] == 0 && m[1][0] == 0 && m[1][2] == 0 &&
                          m[2][0] == 0 && m[2][1] == 0;
    if (straight && m[0][0] > 0 && m[1][1] > 0 && m[2][2] > 0) flags |= kRotationIdentity;
    if (IsUnitRow(m[0]) && IsUnitRow(m[1]) && IsUnitRow(m[2])) flags |= kScaleIdentity;
}

// By cofactors over the determinant, which is expanded along row 0; then the translation through
// what came out, negated. What would not be finite counts as singular.
void Matrix3::Invert() {
    const float determinant =
        m[0][0] * Cofactor(m, 0, 0) + m[0][1] * Cofactor(m, 0, 1) + m[0][2] * Cofactor(m, 0, 2);
    Matrix3 inverse;
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column)
            inverse.m[row][column] = Cofactor(m, column, row) / determinant;
    const Point3 translation = inverse.VectorTransform(GetRow(3));
    inverse.SetRow(3, {-translation.x, -translation.y, -translation.z});

    if (determinant == 0 || !IsFinite(inverse)) {
        IdentityMatrix();
        return;
    }
    *this = inverse;
    ValidateFlags();
}

Matrix3 Matrix3::operator*(const Matrix3& right) const {
    Matrix3 product;
    for (int row = 0; row < 3; ++row)
        product.SetRow(row, right.VectorTransform(GetRow(row)));
    product.SetRow(3, right.PointTransform(GetRow(3)));
    product.ValidateFlags();
    return product;
}

Point3 Matrix3::PointTransform(const Point3& p) const {
    return {p.x * m[0][0] + p.y * m[1][0] + p.z * m[2][0] + m[3][0],
            p.x * m[0][1] + p.y * m[1][1] + p.z * m[2][1] + m[3][1],
            p.x * m[0][2] + p.y * m[1][2] + p.z * m[2][2] + m[3][2]};
}

Point3 Matrix3::VectorTransform(const Point3& v) const {
    return {v.x * m[0][0] + v.y * m[1][0] + v.z * m[2][0],
            v.x * m[0][1] + v.y * m[1][1] + v.z * m[2][1],
            v.x * m[0][2] + v.y * m[1][2] + v.z * m[2][2]};
}

bool operator==(const Matrix3& a, const Matrix3& b) {
    for (int row = 0; row < 4; ++row)
        if (!(a.GetRow(row) == b.GetRow(row))) return false;
    return true;
}

Matrix3 Inverse(const Matrix3& matrix) {
    Matrix3 inverse = matrix;
    inverse.Invert();
    return inverse;
}
