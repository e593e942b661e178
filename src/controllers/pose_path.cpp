#include "controllers/pose_path.h"

#include <cstring>

#include "measures/core_space.h"

// The order and the precision of each step are defined; recorded takes are played back by them.
// Row lengths are in single precision, rotation and translation in double.

Pose PoseOf(const Matrix3& matrix) {
    const TVL::CMatrix4 wide = ToCore(matrix);
    Pose pose;
    pose.rotation = QuatFromMatrix(wide);
    for (int i = 0; i < 3; ++i) {
        pose.translation[i] = wide[3][i];
        pose.lengths[i] = matrix.GetRow(i).Length();
    }
    return pose;
}

PosePath::PosePath(const Pose& left, const Pose& right)
    : start_(left), turn_(QuatLog(WithPositiveW(Conjugate(left.rotation) * right.rotation))) {
    for (int i = 0; i < 3; ++i) {
        offset_[i] = right.translation[i] - left.translation[i];
        growth_[i] = right.lengths[i] - left.lengths[i];
    }
}

Matrix3 PosePath::At(float fraction) const {
    const double wide = static_cast<double>(fraction);
    const Quaternion step = QuatExp({turn_.x * wide, turn_.y * wide, turn_.z * wide});
    TVL::CMatrix4 placement = QuatToMatrix(WithPositiveW(start_.rotation * step));
    for (int column = 0; column < 3; ++column)
        placement[3][column] = start_.translation[column] + offset_[column] * wide;
    Matrix3 result = ToHost(placement);
    for (int row = 0; row < 3; ++row) {
        const float length = start_.lengths[row] + growth_[row] * fraction;
        result.SetRow(row, result.GetRow(row).Normalize() * length);
    }
    result.ValidateFlags();
    return result;
}

bool KeptPath::IsFor(const KeyTable<Matrix3>& table, const Matrix3& parent) const {
    return edition_ == table.keys.Edition() && std::memcmp(&parent_, &parent, sizeof parent) == 0;
}

const PosePath& KeptPath::Between(const KeyTable<Matrix3>& table, const KeyBracket<Matrix3>& around,
                                  const Matrix3& parent) {
    const bool isFor = IsFor(table, parent);
    if (isFor && index_ == around.index) return path_;
    if (!isFor) {
        parent_ = parent;
        fromParent_ = Inverse(parent);
        edition_ = table.keys.Edition();
    }
    const bool isNext = isFor && around.index == index_ + 1;
    const bool isPrevious = isFor && around.index == index_ - 1;
    const Pose left = isNext ? right_ : PoseOf(around.left->value * parent);
    right_ = isPrevious ? left_ : PoseOf(around.right->value * parent);
    left_ = left;
    path_ = PosePath(left_, right_);
    index_ = around.index;
    return path_;
}
