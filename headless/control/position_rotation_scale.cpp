#include "headless/control/position_rotation_scale.h"

#include "headless/control/track_storage.h"
#include "headless/control/transform_packet.h"
#include "headless/references/fresh.h"
#include "headless/storage/plain_chunks.h"

namespace headless {
namespace {

constexpr std::uint16_t kPositionChunk = 1;
constexpr std::uint16_t kRotationChunk = 2;
constexpr std::uint16_t kScaleChunk = 3;

// Super classes of the three parts.
constexpr SClass_ID kPositionTrack = 0x9005;
constexpr SClass_ID kRotationTrack = 0x9006;
constexpr SClass_ID kScaleTrack = 0x9007;

template <class T, class Change>
void RewriteKeys(KeyTrack<T>& track, Change change) {
    for (TrackKey<T>& key : track.keys)
        key.value = change(key);
}

}  // namespace

PositionRotationScale::PositionRotationScale()
    : position_(*this, kPositionTrack, "Position"),
      rotation_(*this, kRotationTrack, "Rotation"),
      scale_(*this, kScaleTrack, "Scale") {
    Clear();
}

void PositionRotationScale::Clear() {
    position_.Track().UnrecordedKeys() = {};
    rotation_.Track().UnrecordedKeys() = {};
    scale_.Track().UnrecordedKeys() = {TransformParts().scale, {}};
}

Animatable* PositionRotationScale::SubAnim(int index) {
    Animatable* const parts[] = {&position_, &rotation_, &scale_};
    return index >= 0 && index < NumSubs() ? parts[index] : nullptr;
}

HostString PositionRotationScale::SubAnimName(int index) {
    const HostString names[] = {position_.Name(), rotation_.Name(), scale_.Name()};
    return index >= 0 && index < NumSubs() ? names[index] : HostString();
}

IOResult PositionRotationScale::Save(ISave* save) {
    SaveTrack(*save, kPositionChunk, position_.Track().Keys());
    SaveTrack(*save, kRotationChunk, rotation_.Track().Keys());
    SaveTrack(*save, kScaleChunk, scale_.Track().Keys());
    return IO_OK;
}

IOResult PositionRotationScale::Load(ILoad* load) {
    Clear();
    return LoadChunks(*load, [&](std::uint16_t id) {
        switch (id) {
            case kPositionChunk:
                return LoadTrack(*load, position_.Track().UnrecordedKeys());
            case kRotationChunk:
                return LoadTrack(*load, rotation_.Track().UnrecordedKeys());
            case kScaleChunk:
                return LoadTrack(*load, scale_.Track().UnrecordedKeys());
            default:
                return false;
        }
    });
}

RefTargetHandle PositionRotationScale::Clone(RemapDir& remap) {
    Fresh<PositionRotationScale> copy(new PositionRotationScale);
    copy->position_.Track().UnrecordedKeys() = position_.Track().Keys();
    copy->rotation_.Track().UnrecordedKeys() = rotation_.Track().Keys();
    copy->scale_.Track().UnrecordedKeys() = scale_.Track().Keys();
    BaseClone(this, copy.get(), remap);
    return copy.release();
}

// A position needs itself alone; what becomes of a rotation depends on the scale at its time, and
// the other way round, so both are worked out from what stood before.
int PositionRotationScale::ChangeParents(TimeValue, const Matrix3& oldParent,
                                         const Matrix3& newParent, const Matrix3&) {
    const Matrix3 change = oldParent * Inverse(newParent);
    const auto changed = [&change](const Quat& rotation, const Point3& scale) {
        return Decompose(Compose({Point3(), rotation, scale}) * change);
    };
    KeyTrack<Point3>& positions = position_.Track().UnrecordedKeys();
    KeyTrack<Quat>& rotations = rotation_.Track().UnrecordedKeys();
    KeyTrack<Point3>& scales = scale_.Track().UnrecordedKeys();
    const KeyTrack<Quat> rotationsBefore = rotations;
    const KeyTrack<Point3> scalesBefore = scales;

    positions.rest = change.PointTransform(positions.rest);
    rotations.rest = changed(rotationsBefore.rest, scalesBefore.rest).rotation;
    scales.rest = changed(rotationsBefore.rest, scalesBefore.rest).scale;
    RewriteKeys(positions, [&](const auto& key) { return change.PointTransform(key.value); });
    RewriteKeys(rotations, [&](const auto& key) {
        return changed(key.value, scalesBefore.Evaluate(key.time)).rotation;
    });
    RewriteKeys(scales, [&](const auto& key) {
        return changed(rotationsBefore.Evaluate(key.time), key.value).scale;
    });
    NotifyDependents(FOREVER, PART_ALL, REFMSG_CHANGE);
    return 1;
}

void PositionRotationScale::GetValue(TimeValue t, void* value, Interval& valid,
                                     GetSetMethod method) {
    auto& matrix = *static_cast<Matrix3*>(value);
    const Matrix3 own = Compose(PartsAt(t));
    matrix = method == CTRL_ABSOLUTE ? own : own * matrix;
    if (position_.NumKeys() > 0 || rotation_.NumKeys() > 0 || scale_.NumKeys() > 0)
        valid.SetInstant(t);
}

void PositionRotationScale::SetValue(TimeValue t, void* value, int, GetSetMethod method) {
    const auto& packet = *static_cast<const SetXFormPacket*>(value);
    const Matrix3 before = method == CTRL_ABSOLUTE ? Matrix3() : Compose(PartsAt(t));
    const TransformParts parts = Decompose(Apply(packet, before));
    position_.Track().SetValue(t, parts.position);
    rotation_.Track().SetValue(t, parts.rotation);
    scale_.Track().SetValue(t, parts.scale);
    NotifyDependents(FOREVER, PART_ALL, REFMSG_CHANGE);
}

TransformParts PositionRotationScale::PartsAt(TimeValue t) const {
    return {position_.Track().Keys().Evaluate(t), rotation_.Track().Keys().Evaluate(t),
            scale_.Track().Keys().Evaluate(t)};
}

}  // namespace headless
