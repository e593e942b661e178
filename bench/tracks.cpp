#include "bench/tracks.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "host/interface.h"

namespace {

// Kept, so that making poses costs nothing beside what is measured.
constexpr std::size_t kPoses = 512;

std::array<Matrix3, kPoses> MakePoses() {
    std::array<Matrix3, kPoses> poses;
    for (std::size_t i = 0; i < kPoses; ++i) {
        const float half = static_cast<float>(i) * 0.005f;
        poses[i].SetRotate(Quat{0, 0, std::sin(half), std::cos(half)});
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

Matrix3 MatrixAt(Control& control, TimeValue t) {
    Matrix3 value;
    Interval valid = FOREVER;
    control.GetValue(t, &value, valid, CTRL_RELATIVE);
    return value;
}

HostTrack::HostTrack()
    : control_(static_cast<Control*>(GetCOREInterface()->CreateInstance(
          CTRL_MATRIX3_CLASS_ID, kPositionRotationScaleClassId))) {}

Matrix3 Between::operator()(const TarvoKey<Matrix3>& left, const TarvoKey<Matrix3>& right,
                            TimeValue t) {
    pair_->table.keys[0] = left;
    pair_->table.keys[1] = right;
    return MatrixAt(*pair_, t);
}

Matrix3 MapTrack::Value(TimeValue t) {
    const auto right = keys_.upper_bound(t);
    const auto left = std::prev(right);
    if (left->first == t || right == keys_.end()) return left->second;
    return between_({0, left->first, left->second}, {0, right->first, right->second}, t);
}

void VectorTrack::Append(TimeValue t, const Matrix3& value) {
    keys_.insert(FirstAfter(t), {0, t, value});
}

Matrix3 VectorTrack::Value(TimeValue t) {
    const auto right = FirstAfter(t);
    const auto left = right - 1;
    if (left->time == t || right == keys_.end()) return left->value;
    return between_(*left, *right, t);
}

std::vector<TarvoKey<Matrix3>>::iterator VectorTrack::FirstAfter(TimeValue t) {
    return std::upper_bound(
        keys_.begin(), keys_.end(), t,
        [](TimeValue at, const TarvoKey<Matrix3>& key) { return at < key.time; });
}
