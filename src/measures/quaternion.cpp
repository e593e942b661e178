#include "measures/quaternion.h"

#include <algorithm>
#include <cmath>

namespace {

void NormalizeRow(double* row) {
    const double length = std::sqrt(row[0] * row[0] + row[1] * row[1] + row[2] * row[2]);
    if (length == 0.0) {
        row[0] = 0;
        row[1] = 1;
        row[2] = 0;
        return;
    }
    for (int i = 0; i < 3; ++i)
        row[i] /= length;
}

Quaternion Normalized(const Quaternion& q) {
    const double squares = q.x * q.x + q.y * q.y + q.z * q.z + q.w * q.w;
    if (squares == 0.0) return {};
    const double length = std::sqrt(squares);
    return {q.x / length, q.y / length, q.z / length, q.w / length};
}

// The components before normalising; `r` has unit rows.
Quaternion Components(const TVL::CMatrix4& r) {
    const double sums[4] = {
        std::abs(1 + r[0][0] + r[1][1] + r[2][2]), std::abs(1 + r[0][0] - r[1][1] - r[2][2]),
        std::abs(1 - r[0][0] + r[1][1] - r[2][2]), std::abs(1 - r[0][0] - r[1][1] + r[2][2])};
    const double* greatest = std::max_element(sums, sums + 4);
    const double s = 2 * std::sqrt(*greatest);
    switch (greatest - sums) {
        case 0:
            return {(r[1][2] - r[2][1]) / s, (r[2][0] - r[0][2]) / s, (r[0][1] - r[1][0]) / s,
                    s * 0.25};
        case 1:
            return {s * 0.25, (r[1][0] + r[0][1]) / s, (r[0][2] + r[2][0]) / s,
                    (r[1][2] - r[2][1]) / s};
        case 2:
            return {(r[1][0] + r[0][1]) / s, s * 0.25, (r[2][1] + r[1][2]) / s,
                    (r[2][0] - r[0][2]) / s};
        default:
            return {(r[0][2] + r[2][0]) / s, (r[2][1] + r[1][2]) / s, s * 0.25,
                    (r[0][1] - r[1][0]) / s};
    }
}

}  // namespace

Quaternion QuatFromMatrix(const TVL::CMatrix4& matrix) {
    TVL::CMatrix4 rotation = matrix;
    for (int row = 0; row < 3; ++row)
        NormalizeRow(rotation[row]);
    return WithPositiveW(Normalized(Components(rotation)));
}

RotationVector QuatLog(const Quaternion& q) {
    const Quaternion p = WithPositiveW(q);
    const double angle = 2 * std::acos(std::clamp(p.w, -1.0, 1.0));
    if (angle == 0.0) return {};
    const double sine = std::sin(angle / 2);
    return {p.x * angle / sine, p.y * angle / sine, p.z * angle / sine};
}

Quaternion QuatExp(const RotationVector& r) {
    const double angle = std::sqrt(r.x * r.x + r.y * r.y + r.z * r.z);
    if (angle == 0.0) return {};
    const double sine = std::sin(angle / 2);
    return {r.x / angle * sine, r.y / angle * sine, r.z / angle * sine, std::cos(angle / 2)};
}
