#include "controllers/scalar_control.h"

#include "host/animate.h"

constinit LiveInstances<ScalarControl> ScalarControl::liveInstances;

ScalarControl::ScalarControl() : BaseControl(kSuperClassID, kClassID, "Tarvo Scalar control") {
    liveInstances.Append(*this);
}

ScalarControl::~ScalarControl() {
    liveInstances.Remove(*this);
}

void ScalarControl::GetValue(TimeValue t, void* value, Interval& valid, GetSetMethod method) {
    valid.SetInstant(t);
    if (NeedsEvaluation(t)) table.currentKey = GetKeyAtTime(t);
    float& result = *static_cast<float*>(value);
    result = method == CTRL_ABSOLUTE ? table.currentKey.value : result + table.currentKey.value;
}

void ScalarControl::SetValue(TimeValue t, void* value, int, GetSetMethod method) {
    HoldCurrentKey();
    const float given = *static_cast<const float*>(value);
    float& current = table.currentKey.value;
    current = method == CTRL_ABSOLUTE ? given : current + given;
    if (Animating()) AddKey({0, t, current});
    AnnounceChange(*this);
}

TarvoKey<float> ScalarControl::GetKeyAtTime(TimeValue t) {
    const KeyBracket<float> around = table.FindBracket(t);
    const float left = around.left->value;
    if (around.IsOneKey()) return {0, t, left};
    return {0, t, around.Fraction(t) * (around.right->value - left) + left};
}
