#include "bench/tracks.h"

#include <algorithm>
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

void SetMatrix(Control& control, TimeValue t, const Matrix3& matrix) {
    SetXFormPacket packet;
    packet.command = XFORM_SET;
    packet.tmAxis = matrix;
    control.SetValue(t, &packet, 1, CTRL_ABSOLUTE);
}

Matrix3 MatrixAt(Control& control, TimeValue t, const Matrix3& parent) {
    Matrix3 value = parent;
    Interval valid = FOREVER;
    control.GetValue(t, &value, valid, CTRL_RELATIVE);
    return value;
}

void VectorTrack::Append(TimeValue t, const Matrix3& value) {
    const auto after =
        std::ranges::upper_bound(keys_, t, {}, [](const auto& key) { return key.time; });
    keys_.insert(after, {0, t, value});
}
