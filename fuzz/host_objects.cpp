#include "fuzz/fuzzed_world.h"
#include "headless/primitives.h"

namespace {

ReferenceTarget* NewControl(SClass_ID superClass, Class_ID id) {
    void* const made = GetCOREInterface()->CreateInstance(superClass, id);
    return static_cast<ReferenceTarget*>(static_cast<Animatable*>(made));
}

ReferenceTarget* NewObject(std::uint8_t kind) {
    switch (kind % 7) {
        case 0:
            return NewControl(CTRL_FLOAT_CLASS_ID, kLinearFloatClassId);
        case 1:
            return NewControl(CTRL_MATRIX3_CLASS_ID, kPositionRotationScaleClassId);
        case 2:
            return GetCOREInterface()->CreateCameraObject(0);
        case 3:
            return CreateNewTriObject();
        case 4:
            return headless::NewSplines({});
        case 5:
            return headless::NewSphere(1, 3);
        default:
            return headless::NewBend(headless::NewSphere(1, 3), 45);
    }
}

// Asks an object for its shape.
void Show(ReferenceTarget& target) {
    auto* const object = dynamic_cast<Object*>(&target);
    if (!object) return;
    Box3 box;
    object->GetLocalBoundBox(0, nullptr, nullptr, box);
    Object* const mesh = object->ConvertToType(0, kTriObjectClassId);
    if (mesh && mesh != object) mesh->DeleteThis();
    auto* const shape = dynamic_cast<ShapeObject*>(object);
    for (int curve = 0; shape && curve < shape->NumberOfCurves(); ++curve) {
        shape->LengthOfCurve(0, curve);
        shape->InterpCurve3D(0, curve, 0.3F, PARAM_NORMALIZED);
        shape->InterpCurve3D(0, curve, 0.3F, PARAM_SIMPLE);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    FuzzedWorld::Get();
    ReferenceTarget* const object = NewObject(data[0]);
    LoadAndSave(*object, AsBytes(data + 1, size - 1));
    Show(*object);
    object->DeleteMe();
    return 0;
}
