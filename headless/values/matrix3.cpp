#include "host/matrix3.h"

#include <cmath>

namespace {

bool IsFinite(const Matrix3& matrix) {
    for (const auto& row : matrix.m)
        for (const float number : row)
            if (!std::isfinite(number)) return false;
    return true;
}

}  // namespace

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

// By cofactors over the determinant, which is expanded along row 0; then the translation through
// what came out, negated. What would not be finite counts as singular. The cofactors of a row are
// the cross product of the two that come after it, in turn.
void Matrix3::Invert() {
    const Point3 cofactors[3] = {CrossProd(GetRow(1), GetRow(2)), CrossProd(GetRow(2), GetRow(0)),
                                 CrossProd(GetRow(0), GetRow(1))};
    const float determinant = DotProd(GetRow(0), cofactors[0]);
    Matrix3 inverse;
    for (int column = 0; column < 3; ++column) {
        const Point3& c = cofactors[column];
        inverse.m[0][column] = c.x / determinant;
        inverse.m[1][column] = c.y / determinant;
        inverse.m[2][column] = c.z / determinant;
    }
    const Point3 translation = inverse.VectorTransform(GetRow(3));
    inverse.SetRow(3, {-translation.x, -translation.y, -translation.z});

    if (determinant == 0 || !IsFinite(inverse)) {
        IdentityMatrix();
        return;
    }
    *this = inverse;
    ValidateFlags();
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
