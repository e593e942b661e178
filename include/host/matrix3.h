#pragma once

#include <bit>
#include <cmath>
#include <cstdint>

#include "host/host_api.h"
#include "host/point3.h"

// A unit quaternion. As a matrix for row vectors, row 0 is (x² − y² − z² + w², 2(xy + wz),
// 2(zx − wy)) and so on round.
struct Quat {
    float x = 0;
    float y = 0;
    float z = 0;
    float w = 1;

    friend constexpr bool operator==(const Quat&, const Quat&) = default;
};

// A 4 by 3 matrix of floats for row vectors: p' = p × M, translation in row 3, parents multiply on
// the right. 52 bytes: twelve floats row by row, then the flags. Each sum goes from left to right,
// in single precision, so that the same matrices give the same bits on every machine. Every
// operation that makes a whole matrix ends with ValidateFlags.
class HOST_API Matrix3 {
  public:
    // Parts of the matrix that are known to be the identity; see ValidateFlags.
    static constexpr std::uint32_t kPositionIdentity = 1;
    static constexpr std::uint32_t kRotationIdentity = 2;
    static constexpr std::uint32_t kScaleIdentity = 4;

    Matrix3() { IdentityMatrix(); }
    Matrix3(const Point3& row0, const Point3& row1, const Point3& row2, const Point3& row3) {
        SetRow(0, row0);
        SetRow(1, row1);
        SetRow(2, row2);
        SetRow(3, row3);
        ValidateFlags();
    }

    void IdentityMatrix() {
        for (int row = 0; row < 4; ++row)
            for (int column = 0; column < 3; ++column)
                m[row][column] = row == column ? 1.0F : 0.0F;
        flags = kPositionIdentity | kRotationIdentity | kScaleIdentity;
    }
    Point3 GetRow(int row) const { return {m[row][0], m[row][1], m[row][2]}; }

    // Leaves the flags to ValidateFlags.
    void SetRow(int row, const Point3& value) {
        m[row][0] = value.x;
        m[row][1] = value.y;
        m[row][2] = value.z;
    }
    Point3 GetTrans() const { return GetRow(3); }

    // Each makes the whole matrix a pure translation or rotation.
    void SetTranslate(const Point3& offset);
    void SetRotate(const Quat& rotation);

    // Multiplies by a scale on the right; the translation is scaled only if asked for.
    void Scale(const Point3& factors, bool scaleTranslation = false);

    // Sets the flags from the numbers. Position: row 3 is zero. Rotation: the axes lie on the
    // host's, pointing the same way. Scale: the three axes have length 1.
    void ValidateFlags() {
        flags = 0;
        if (AreZero(m[3][0], m[3][1], m[3][2])) flags |= kPositionIdentity;
        const bool forward = m[0][0] > 0 && m[1][1] > 0 && m[2][2] > 0;
        if (forward && AreZero(m[0][1], m[0][2], m[1][0], m[1][2], m[2][0], m[2][1]))
            flags |= kRotationIdentity;
        if (IsUnitRow(m[0]) && IsUnitRow(m[1]) && IsUnitRow(m[2])) flags |= kScaleIdentity;
    }

    // The inverse in single precision; a singular matrix becomes the identity.
    void Invert();

    Matrix3 operator*(const Matrix3& right) const {
        return {right.VectorTransform(GetRow(0)), right.VectorTransform(GetRow(1)),
                right.VectorTransform(GetRow(2)), right.PointTransform(GetRow(3))};
    }
    Point3 PointTransform(const Point3& p) const {
        return {p.x * m[0][0] + p.y * m[1][0] + p.z * m[2][0] + m[3][0],
                p.x * m[0][1] + p.y * m[1][1] + p.z * m[2][1] + m[3][1],
                p.x * m[0][2] + p.y * m[1][2] + p.z * m[2][2] + m[3][2]};
    }
    Point3 VectorTransform(const Point3& v) const {
        return {v.x * m[0][0] + v.y * m[1][0] + v.z * m[2][0],
                v.x * m[0][1] + v.y * m[1][1] + v.z * m[2][1],
                v.x * m[0][2] + v.y * m[1][2] + v.z * m[2][2]};
    }

    // Numbers alone, not the flags.
    friend HOST_API bool operator==(const Matrix3& a, const Matrix3& b);

    float m[4][3];
    std::uint32_t flags;

  private:
    // How far the square of a row's length may lie from 1 for the row to count as unscaled.
    static constexpr float kUnitRowTolerance = 1e-6F;

    // Their bits are, but for the sign. As a rule the first one tells.
    template <class... Floats>
    static bool AreZero(Floats... numbers) {
        return ((std::bit_cast<std::uint32_t>(numbers) << 1 == 0) && ...);
    }

    static bool IsUnitRow(const float* row) {
        const float square = row[0] * row[0] + row[1] * row[1] + row[2] * row[2];
        return std::abs(square - 1) <= kUnitRowTolerance;
    }
};

HOST_API Matrix3 Inverse(const Matrix3& matrix);
