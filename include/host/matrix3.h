#pragma once

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
// the right. 52 bytes: twelve floats row by row, then the flags.
class HOST_API Matrix3 {
  public:
    // Parts of the matrix that are known to be the identity; see ValidateFlags.
    static constexpr std::uint32_t kPositionIdentity = 1;
    static constexpr std::uint32_t kRotationIdentity = 2;
    static constexpr std::uint32_t kScaleIdentity = 4;

    Matrix3();  // the identity
    Matrix3(const Point3& row0, const Point3& row1, const Point3& row2, const Point3& row3);

    void IdentityMatrix();
    Point3 GetRow(int row) const;
    void SetRow(int row, const Point3& value);  // leaves the flags to ValidateFlags
    Point3 GetTrans() const { return GetRow(3); }

    // Each makes the whole matrix a pure translation or rotation.
    void SetTranslate(const Point3& offset);
    void SetRotate(const Quat& rotation);

    // Multiplies by a scale on the right; the translation is scaled only if asked for.
    void Scale(const Point3& factors, bool scaleTranslation = false);

    // Sets the flags from the numbers.
    void ValidateFlags();

    // The inverse in single precision; a singular matrix becomes the identity.
    void Invert();

    Matrix3 operator*(const Matrix3& right) const;
    Point3 PointTransform(const Point3& p) const;
    Point3 VectorTransform(const Point3& v) const;

    // Numbers alone, not the flags.
    friend HOST_API bool operator==(const Matrix3& a, const Matrix3& b);

    float m[4][3];
    std::uint32_t flags;
};

HOST_API Matrix3 Inverse(const Matrix3& matrix);
