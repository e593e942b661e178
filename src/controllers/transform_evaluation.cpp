#include <new>

#include "controllers/pose_path.h"
#include "controllers/transform_control.h"

std::uint32_t TransformControl::FlagsAlone(TimeValue t, const Key& key) const {
    const bool beyondTable = key.time != t && table.Count() > 1;
    return beyondTable ? key.flags : 0;
}

TarvoKey<Matrix3> TransformControl::GetKeyAtTime(TimeValue t) {
    const KeyBracket<Matrix3> around = table.FindBracket(t);
    if (around.IsOneKey()) return {FlagsAlone(t, *around.left), t, around.left->value};
    const Pose left = PoseOf(around.left->value);
    const PosePath path(left, PoseOf(around.right->value));
    return {0, t, path.At(around.Fraction())};
}

void TransformControl::EvaluateInParent(TimeValue t, const Matrix3& parent) {
    const KeyBracket<Matrix3> around = table.FindBracket(t);
    Key& current = table.currentKey;
    current.time = t;
    current.flags = around.IsOneKey() ? FlagsAlone(t, *around.left) : 0;
    if (around.IsOneKey()) {
        current.value = around.left->value;
    } else {
        // Made in its place: a copy of what has just been written waits until that is in memory.
        new (&current.value) Matrix3(keptPath.At(around.Fraction(), table, around, parent));
    }
}
