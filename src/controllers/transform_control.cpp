#include "controllers/transform_control.h"

#include <bit>
#include <cstring>
#include <new>

#include "host/hold.h"

namespace {

// What the packet does to a matrix in its axis system; the identity for other commands.
Matrix3 StepOf(const SetXFormPacket& packet) {
    Matrix3 step;
    if (packet.command == XFORM_MOVE) step.SetTranslate(packet.p);
    if (packet.command == XFORM_ROTATE) step.SetRotate(packet.q);
    if (packet.command == XFORM_SCALE) step.Scale(packet.p, false);
    return step;
}

bool IsIdentity(const Matrix3& matrix) {
    static constexpr float kIdentity[4][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {0, 0, 0}};
    return std::memcmp(matrix.m, kIdentity, sizeof matrix.m) == 0;
}

// The bits in which a number differs from its sum with 0, and those of 0 times it but for the sign.
std::uint32_t Touched(float number) {
    const auto bits = [](float f) { return std::bit_cast<std::uint32_t>(f); };
    return (bits(number) ^ bits(number + 0.0F)) | bits(number * 0) << 1;
}

// Whether the identity, on whichever side, leaves the matrix as it is to the last bit: each number
// has an end, so that 0 times it is 0, and none is −0, which such a 0 would turn.
bool IsLeftByIdentity(const Matrix3& matrix) {
    float numbers[3][4];
    std::memcpy(numbers, matrix.m, sizeof numbers);
    std::uint32_t touched = 0;
    for (int i = 0; i < 4; ++i)
        touched |= Touched(numbers[0][i]) | Touched(numbers[1][i]) | Touched(numbers[2][i]);
    return touched == 0;
}

// The identity × world × inverse(parent). Below the root the parent is the identity, too.
Matrix3 Placed(const Matrix3& world, const Matrix3& parent) {
    if (!IsLeftByIdentity(world)) return Matrix3() * world * Inverse(parent);
    if (!IsIdentity(parent)) return world * Inverse(parent);
    Matrix3 placed = world;
    placed.ValidateFlags();
    return placed;
}

Matrix3 Applied(const SetXFormPacket& packet, const Matrix3& value) {
    const Matrix3& parent = packet.tmParent;
    const Matrix3& axis = packet.tmAxis;
    switch (packet.command) {
        case XFORM_MOVE:
        case XFORM_ROTATE:
        case XFORM_SCALE:
            return value * parent * Inverse(axis) * StepOf(packet) * axis * Inverse(parent);
        case XFORM_SET:
            return value * axis * Inverse(parent);
        default:
            return value;
    }
}

}  // namespace

constinit LiveInstances<TransformControl> TransformControl::liveInstances;

TransformControl::TransformControl()
    : BaseControl(kSuperClassID, kClassID, "Tarvo Transform control") {
    liveInstances.Append(*this);
}

TransformControl::~TransformControl() {
    liveInstances.Remove(*this);
    LeavePage();
}

int TransformControl::ChangeParents(TimeValue, const Matrix3& oldParent, const Matrix3& newParent,
                                    const Matrix3&) {
    const bool isRecorded = theHold.Holding() || theHold.RestoreOrRedoing();
    if (!isRecorded) table.names.VoidAll();
    const Matrix3 fromNewParent = Inverse(newParent);
    for (Key& key : table.keys.EditWhole())
        key.value = key.value * oldParent * fromNewParent;
    table.currentKey.value = table.currentKey.value * oldParent * fromNewParent;
    AnnounceChange(*this);
    return 1;
}

void TransformControl::GetValue(TimeValue t, void* value, Interval& valid, GetSetMethod method) {
    valid.SetInstant(t);
    Matrix3& result = *static_cast<Matrix3*>(value);
    const Matrix3 incoming = result;  // `value` may be the cached key itself
    if (NeedsEvaluation(t)) EvaluateInParent(t, incoming);
    const Matrix3& current = table.currentKey.value;
    if (method == CTRL_ABSOLUTE || &result == &current)
        result = method == CTRL_ABSOLUTE ? current : current * incoming;
    else
        new (value) Matrix3(current * incoming);  // in its place, see EvaluateInParent
}

void TransformControl::SetValue(TimeValue t, void* value, int, GetSetMethod method) {
    const auto& packet = *static_cast<const SetXFormPacket*>(value);
    const bool isAbsolute = method == CTRL_ABSOLUTE;
    if (isAbsolute && packet.command == XFORM_SET)
        TakeValue(t, Placed(packet.tmAxis, packet.tmParent), t);
    else
        TakeValue(t, Applied(packet, isAbsolute ? Matrix3() : table.currentKey.value), t);
}
