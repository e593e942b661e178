#include "headless/control/keyed.h"
#include "headless/control/own_controllers.h"
#include "headless/hold/graveyard.h"
#include "headless/storage/plain_chunks.h"
#include "headless/values/transform_parts.h"

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

// In the axis system of the packet, whose matrix stands in the world.
Matrix3 InAxes(const SetXFormPacket& packet, const Matrix3& local, const Matrix3& change) {
    return local * packet.tmParent * Inverse(packet.tmAxis) * change * packet.tmAxis *
           Inverse(packet.tmParent);
}

// What the packet makes of a matrix relative to the parent. A command that does not exist changes
// nothing.
Matrix3 Apply(const SetXFormPacket& packet, const Matrix3& local) {
    Matrix3 change;
    switch (packet.command) {
        case XFORM_MOVE:
            change.SetTranslate(packet.p);
            return InAxes(packet, local, change);
        case XFORM_ROTATE:
            change.SetRotate(packet.q);
            return InAxes(packet, local, change);
        case XFORM_SCALE:
            change.Scale(packet.p);
            return InAxes(packet, local, change);
        case XFORM_SET:
            return local * packet.tmAxis * Inverse(packet.tmParent);
        default:
            return local;
    }
}

// One of the controller's three tracks. It is part of the controller and ends with it.
template <class T>
class Part final : public Keyed<Animatable, T> {
  public:
    Part(ReferenceTarget& owner, SClass_ID superClass, const char* name)
        : Keyed<Animatable, T>(owner), superClass_(superClass), name_(name) {}

    void GetClassName(HostString& name) override { name = name_ + " Track"; }
    SClass_ID SuperClassID() override { return superClass_; }
    Class_ID ClassID() override { return {kLinearFloatClassId.partA, superClass_}; }
    void DeleteThis() override {}
    const HostString& Name() const { return name_; }

    KeyTrack<T>& Keys() { return this->Track().UnrecordedKeys(); }
    T At(TimeValue t) const { return this->Track().Keys().Evaluate(t); }

  private:
    SClass_ID superClass_;
    HostString name_;
};

// Position, rotation and scale relative to the parent, a track for each, which are its
// sub-animatables. The keys are theirs; it has none itself.
class PositionRotationScale final : public Control {
  public:
    PositionRotationScale() { Clear(); }

    void GetClassName(HostString& name) override { name = "Position/Rotation/Scale"; }
    SClass_ID SuperClassID() override { return CTRL_MATRIX3_CLASS_ID; }
    Class_ID ClassID() override { return kPositionRotationScaleClassId; }
    void DeleteThis() override { delete this; }

    int NumSubs() override { return 3; }
    Animatable* SubAnim(int index) override {
        Animatable* const parts[] = {&position_, &rotation_, &scale_};
        return index >= 0 && index < NumSubs() ? parts[index] : nullptr;
    }
    HostString SubAnimName(int index) override {
        const HostString names[] = {position_.Name(), rotation_.Name(), scale_.Name()};
        return index >= 0 && index < NumSubs() ? names[index] : HostString();
    }

    IOResult Save(ISave* save) override {
        SaveTrack(*save, kPositionChunk, position_.Keys());
        SaveTrack(*save, kRotationChunk, rotation_.Keys());
        SaveTrack(*save, kScaleChunk, scale_.Keys());
        return IO_OK;
    }

    IOResult Load(ILoad* load) override {
        Clear();
        return LoadChunks(*load, [&](std::uint16_t id) {
            if (id == kPositionChunk) return LoadTrack(*load, position_.Keys());
            if (id == kRotationChunk) return LoadTrack(*load, rotation_.Keys());
            return id == kScaleChunk && LoadTrack(*load, scale_.Keys());
        });
    }

    RefTargetHandle Clone(RemapDir& remap) override {
        Fresh<PositionRotationScale> copy(new PositionRotationScale);
        copy->position_.Keys() = position_.Keys();
        copy->rotation_.Keys() = rotation_.Keys();
        copy->scale_.Keys() = scale_.Keys();
        BaseClone(this, copy.get(), remap);
        return copy.release();
    }

    // Puts no record: the host's own brings back the controller as it was. A position needs itself
    // alone; what becomes of a rotation depends on the scale at its time, and the other way round,
    // so both are worked out from what stood before.
    int ChangeParents(TimeValue, const Matrix3& oldParent, const Matrix3& newParent,
                      const Matrix3&) override {
        const Matrix3 change = oldParent * Inverse(newParent);
        const auto changed = [&change](const Quat& rotation, const Point3& scale) {
            return Decompose(Compose({Point3(), rotation, scale}) * change);
        };
        const KeyTrack<Quat> rotations = rotation_.Keys();
        const KeyTrack<Point3> scales = scale_.Keys();

        position_.Keys().rest = change.PointTransform(position_.Keys().rest);
        rotation_.Keys().rest = changed(rotations.rest, scales.rest).rotation;
        scale_.Keys().rest = changed(rotations.rest, scales.rest).scale;
        RewriteKeys(position_.Keys(),
                    [&](const auto& key) { return change.PointTransform(key.value); });
        RewriteKeys(rotation_.Keys(), [&](const auto& key) {
            return changed(key.value, scales.Evaluate(key.time)).rotation;
        });
        RewriteKeys(scale_.Keys(), [&](const auto& key) {
            return changed(rotations.Evaluate(key.time), key.value).scale;
        });
        NotifyDependents(FOREVER, PART_ALL, REFMSG_CHANGE);
        return 1;
    }

    void GetValue(TimeValue t, void* value, Interval& valid, GetSetMethod method) override {
        auto& matrix = *static_cast<Matrix3*>(value);
        const Matrix3 own = Compose(PartsAt(t));
        matrix = method == CTRL_ABSOLUTE ? own : own * matrix;
        if (position_.NumKeys() > 0 || rotation_.NumKeys() > 0 || scale_.NumKeys() > 0)
            valid.SetInstant(t);
    }

    void SetValue(TimeValue t, void* value, int, GetSetMethod method) override {
        const auto& packet = *static_cast<const SetXFormPacket*>(value);
        const Matrix3 before = method == CTRL_ABSOLUTE ? Matrix3() : Compose(PartsAt(t));
        const TransformParts parts = Decompose(Apply(packet, before));
        position_.Track().SetValue(t, parts.position);
        rotation_.Track().SetValue(t, parts.rotation);
        scale_.Track().SetValue(t, parts.scale);
        NotifyDependents(FOREVER, PART_ALL, REFMSG_CHANGE);
    }

  private:
    // What a new one holds.
    void Clear() {
        position_.Keys() = {};
        rotation_.Keys() = {};
        scale_.Keys() = {TransformParts().scale, {}};
    }

    TransformParts PartsAt(TimeValue t) const {
        return {position_.At(t), rotation_.At(t), scale_.At(t)};
    }

    Part<Point3> position_{*this, kPositionTrack, "Position"};
    Part<Quat> rotation_{*this, kRotationTrack, "Rotation"};
    Part<Point3> scale_{*this, kScaleTrack, "Scale"};
};

}  // namespace

Control* NewPositionRotationScale() {
    return new PositionRotationScale;
}

}  // namespace headless
