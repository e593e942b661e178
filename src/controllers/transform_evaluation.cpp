#include "controllers/transform_control.h"
#include "measures/core_space.h"
#include "measures/quaternion.h"

// The order and the precision of each step are defined; recorded takes are played back by them.

namespace {

// Scale: the length of a row, in single precision.
float RowLength(const Matrix3& left, const Matrix3& right, int row, float fraction) {
    const float first = left.GetRow(row).Length();
    const float last = right.GetRow(row).Length();
    return first + (last - first) * fraction;
}

// Rotation, the shorter way round, in double precision.
Quaternion Rotation(const TVL::CMatrix4& left, const TVL::CMatrix4& right, double fraction) {
    const Quaternion from = QuatFromMatrix(left);
    const Quaternion to = QuatFromMatrix(right);
    const RotationVector way = QuatLog(WithPositiveW(Conjugate(from) * to));
    const RotationVector part{way.x * fraction, way.y * fraction, way.z * fraction};
    return WithPositiveW(from * QuatExp(part));
}

// Rotation and translation alone.
Matrix3 Placement(const TVL::CMatrix4& left, const TVL::CMatrix4& right, double fraction) {
    TVL::CMatrix4 placement = QuatToMatrix(Rotation(left, right, fraction));
    for (int column = 0; column < 3; ++column)
        placement[3][column] = left[3][column] + (right[3][column] - left[3][column]) * fraction;
    return ToHost(placement);
}

Matrix3 Interpolated(const Matrix3& left, const Matrix3& right, float fraction) {
    Matrix3 result = Placement(ToCore(left), ToCore(right), static_cast<double>(fraction));
    for (int row = 0; row < 3; ++row) {
        const Point3 direction = result.GetRow(row).Normalize();
        result.SetRow(row, direction * RowLength(left, right, row, fraction));
    }
    result.ValidateFlags();
    return result;
}

}  // namespace

TarvoKey<Matrix3> TransformControl::KeyAlone(TimeValue t, const Key& key) const {
    const bool beyondTable = key.time != t && table.Count() > 1;
    return {beyondTable ? key.flags : 0, t, key.value};
}

TarvoKey<Matrix3> TransformControl::GetKeyAtTime(TimeValue t) {
    const KeyBracket<Matrix3> around = table.FindBracket(t);
    if (around.IsOneKey()) return KeyAlone(t, *around.left);
    return {0, t, Interpolated(around.left->value, around.right->value, around.Fraction(t))};
}

TarvoKey<Matrix3> TransformControl::EvaluateInParent(TimeValue t, const Matrix3& parent) {
    const KeyBracket<Matrix3> around = table.FindBracket(t);
    if (around.IsOneKey()) return KeyAlone(t, *around.left);
    Matrix3 fromParent = parent;
    fromParent.Invert();
    return {0, t,
            Interpolated(around.left->value * parent, around.right->value * parent,
                         around.Fraction(t)) *
                fromParent};
}
