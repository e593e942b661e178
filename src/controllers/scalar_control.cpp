#include "controllers/scalar_control.h"

#include <bit>

namespace {

// A key that is not selected. Flags and time are returned as one word, and made as one: put
// together in memory it could not be read before both are there, which takes longer than the
// interpolation.
TarvoKey<float> KeyAt(TimeValue t, float value) {
    struct Head {
        std::uint32_t flags;
        TimeValue time;
    };
    const auto head = std::bit_cast<Head>(std::uint64_t{static_cast<std::uint32_t>(t)} << 32);
    return {head.flags, head.time, value};
}

}  // namespace

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
    const float given = *static_cast<const float*>(value);
    const Key& current = table.currentKey;
    TakeValue(t, method == CTRL_ABSOLUTE ? given : current.value + given, current.time);
}

TarvoKey<float> ScalarControl::GetKeyAtTime(TimeValue t) {
    const KeyBracket<float> around = table.FindBracket(t);
    const float left = around.left->value;
    const float right = around.right->value;
    return KeyAt(t, around.IsOneKey() ? left : around.Fraction() * (right - left) + left);
}
