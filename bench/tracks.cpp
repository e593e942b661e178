#include "bench/tracks.h"

#include <array>
#include <cmath>

namespace {

// Kept, so that making poses costs nothing beside what is measured.
constexpr std::size_t kPoses = 512;

std::array<Matrix3, kPoses> MakePoses() {
    std::array<Matrix3, kPoses> poses;
    for (std::size_t i = 0; i < kPoses; ++i) {
        const float half = static_cast<float>(i) * 0.005f;
        poses[i].SetRotate(Quat{0.48f * std::sin(half), 0.6f * std::sin(half),
                                0.64f * std::sin(half), std::cos(half)});
        poses[i].SetRow(3, Point3(static_cast<float>(i), 1, 2));
        poses[i].ValidateFlags();
    }
    return poses;
}

}  // namespace

Matrix3 PoseOfKey(std::int64_t index) {
    static const std::array<Matrix3, kPoses> poses = MakePoses();
    return poses[static_cast<std::size_t>(index) % kPoses];
}

void FillWithTake(OpenTransform& control, std::int64_t keys) {
    for (std::int64_t index = 0; index < keys; ++index)
        control.AddKey({0, TimeOfKey(index), PoseOfKey(index)});
}

Matrix3 MatrixAt(Control& control, TimeValue t, const Matrix3& parent) {
    Matrix3 value = parent;
    Interval valid = FOREVER;
    control.GetValue(t, &value, valid, CTRL_RELATIVE);
    return value;
}
