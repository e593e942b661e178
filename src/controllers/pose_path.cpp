#include "controllers/pose_path.h"

#include <new>
#include <utility>

#include "measures/core_space.h"

// The order and the precision of each step are defined; recorded takes are played back by them.
// Row lengths are in single precision, rotation and translation in double.

Pose PoseOf(const Matrix3& matrix) {
    const auto place = [&](int i) { return static_cast<double>(matrix.m[3][i]); };
    const auto length = [&](int row) { return matrix.GetRow(row).Length(); };
    return {QuatFromMatrix(ToCore(matrix)),
            {place(0), place(1), place(2)},
            {length(0), length(1), length(2)}};
}

PosePath::PosePath(const Pose& left, const Pose& right)
    : left_(&left), turn_(QuatLog(WithPositiveW(Conjugate(left.rotation) * right.rotation))) {
    for (int i = 0; i < 3; ++i) {
        offset_[i] = right.translation[i] - left.translation[i];
        growth_[i] = right.lengths[i] - left.lengths[i];
    }
}

Matrix3 PosePath::At(float fraction) const {
    const double wide = static_cast<double>(fraction);
    const Quaternion step = QuatExp({turn_.x * wide, turn_.y * wide, turn_.z * wide});
    const TVL::CMatrix4 turned = QuatToMatrix(WithPositiveW(left_->rotation * step));
    const auto axis = [&](int i) {
        return ToHost(turned[i]).Normalize() * (left_->lengths[i] + growth_[i] * fraction);
    };
    const auto place = [&](int i) {
        return static_cast<float>(left_->translation[i] + offset_[i] * wide);
    };
    return {axis(0), axis(1), axis(2), {place(0), place(1), place(2)}};
}

void KeptPath::Begin(const KeyTable<Matrix3>& table, const Matrix3& parent) {
    parent_ = parent;
    fromParent_ = Inverse(parent);
    edition_ = table.keys.Edition();
    keys_[0] = keys_[1] = left_ = kNone;
}

const Pose& KeptPath::PoseOfKey(std::int32_t index, const TarvoKey<Matrix3>& key) {
    Pose& pose = poses_[index % 2];
    if (std::exchange(keys_[index % 2], index) != index)
        new (&pose) Pose(PoseOf(key.value * parent_));
    return pose;
}

void KeptPath::Enter(const KeyBracket<Matrix3>& around) {
    left_ = around.index;
    const Pose& left = PoseOfKey(left_, *around.left);
    new (&path_) PosePath(left, PoseOfKey(left_ + 1, *around.right));
}

// What it calls is put into it, so that matrices and rotations go from step to step in registers: a
// step that read them from memory would wait until the one before has written all of them.
[[gnu::flatten]] Matrix3 KeptPath::At(float fraction, const KeyTable<Matrix3>& table,
                                      const KeyBracket<Matrix3>& around, const Matrix3& parent) {
    if (!IsFor(table, parent)) Begin(table, parent);
    if (left_ != around.index) Enter(around);
    return path_.At(fraction) * fromParent_;
}
