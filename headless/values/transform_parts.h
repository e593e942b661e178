#pragma once

#include "host/matrix3.h"
#include "host/point3.h"

namespace headless {

// As matrices for row vectors: first `a`, then `b`.
Quat Then(const Quat& a, const Quat& b);

Quat Opposite(const Quat& q);

// Along the shorter arc; `f` from 0 at `a` to 1 at `b`. Worked out in double (K. Shoemake,
// Animating Rotation with Quaternion Curves, 1985).
Quat Slerp(const Quat& a, const Quat& b, double f);

// A matrix taken apart: first scaled along its own axes, then rotated, then moved. Shear has no
// place in it.
struct TransformParts {
    Point3 position;
    Quat rotation;
    Point3 scale{1, 1, 1};
};

// The position is row 3, bit for bit. The scales are the lengths of the rows, all negative if the
// determinant is. A single row of length 0 counts as perpendicular to the other two; with more of
// them there is no rotation. In double, narrowed at the end; the rotation by S. W. Shepperd,
// Quaternion from Rotation Matrix, 1978.
TransformParts Decompose(const Matrix3& matrix);

Matrix3 Compose(const TransformParts& parts);

}  // namespace headless
