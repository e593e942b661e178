#include "headless/control/own_controllers.h"

#include "headless/control/keyed.h"
#include "headless/hold/graveyard.h"
#include "headless/storage/plain_chunks.h"

Control::~Control() = default;

void Control::Copy(Control*) {}

int Control::ChangeParents(TimeValue, const Matrix3&, const Matrix3&, const Matrix3&) {
    return 0;
}

namespace headless {
namespace {

constexpr std::uint16_t kKeysChunk = 1;

class LinearFloat final : public Keyed<Control, float> {
  public:
    void GetClassName(HostString& name) override { name = "Linear Float"; }
    SClass_ID SuperClassID() override { return CTRL_FLOAT_CLASS_ID; }
    Class_ID ClassID() override { return kLinearFloatClassId; }
    void DeleteThis() override { delete this; }

    IOResult Save(ISave* save) override {
        SaveTrack(*save, kKeysChunk, Track().Keys());
        return IO_OK;
    }

    IOResult Load(ILoad* load) override {
        KeyTrack<float>& keys = Track().UnrecordedKeys();
        keys = {};
        return LoadChunks(
            *load, [&](std::uint16_t id) { return id == kKeysChunk && LoadTrack(*load, keys); });
    }

    RefTargetHandle Clone(RemapDir& remap) override {
        Fresh<LinearFloat> copy(new LinearFloat);
        copy->Track().UnrecordedKeys() = Track().Keys();
        BaseClone(this, copy.get(), remap);
        return copy.release();
    }

    void GetValue(TimeValue t, void* value, Interval& valid, GetSetMethod method) override {
        auto& number = *static_cast<float*>(value);
        const float own = Track().Keys().Evaluate(t);
        number = method == CTRL_ABSOLUTE ? own : number + own;
        if (NumKeys() > 0) valid.SetInstant(t);
    }

    void SetValue(TimeValue t, void* value, int, GetSetMethod method) override {
        const float number = *static_cast<const float*>(value);
        const float before = method == CTRL_ABSOLUTE ? 0 : Track().Keys().Evaluate(t);
        Track().SetValue(t, before + number);
        Track().Announce();
    }
};

}  // namespace

Control* NewLinearFloat() {
    return new LinearFloat;
}

Control* NewControl(SClass_ID superClass, Class_ID classId) {
    if (superClass == CTRL_FLOAT_CLASS_ID && classId == kLinearFloatClassId)
        return NewLinearFloat();
    if (superClass == CTRL_MATRIX3_CLASS_ID && classId == kPositionRotationScaleClassId)
        return NewPositionRotationScale();
    return nullptr;
}

}  // namespace headless
