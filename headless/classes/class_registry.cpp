#include "headless/classes/class_registry.h"

#include <span>

#include "headless/control/own_controllers.h"
#include "headless/objects/own_classes.h"
#include "headless/primitives.h"

namespace headless {
namespace {

using Factory = Animatable*();

class OwnDescriptor final : public ClassDesc {
  public:
    OwnDescriptor(const char* name, SClass_ID superClass, Class_ID classId, Factory* make)
        : name_(name), superClass_(superClass), classId_(classId), make_(make) {}

    int IsPublic() override { return 1; }
    void* Create(bool) override { return make_(); }
    const char* ClassName() override { return name_; }
    SClass_ID SuperClassID() override { return superClass_; }
    Class_ID ClassID() override { return classId_; }
    const char* Category() override { return "Standard"; }

  private:
    const char* name_;
    SClass_ID superClass_;
    Class_ID classId_;
    Factory* make_;
};

// An object is handed on as its creator does: by the address of its Object or Control part, which
// is that of its Animatable part, since none of these has a second base.
std::span<OwnDescriptor> OwnDescriptors() {
    static OwnDescriptor all[] = {
        {"Position/Rotation/Scale", CTRL_MATRIX3_CLASS_ID, kPositionRotationScaleClassId,
         []() -> Animatable* { return NewPositionRotationScale(); }},
        {"Linear Float", CTRL_FLOAT_CLASS_ID, kLinearFloatClassId,
         []() -> Animatable* { return NewLinearFloat(); }},
        {"Free Camera", CAMERA_CLASS_ID, kFreeCameraClassId,
         []() -> Animatable* { return NewFreeCamera(); }},
        {"Camera Parameters", kCameraParametersSuperClass, kFreeCameraClassId,
         []() -> Animatable* { return NewCameraParameters(); }},
        {"Mesh", GEOMOBJECT_CLASS_ID, kTriObjectClassId,
         []() -> Animatable* { return CreateNewTriObject(); }},
        {"Line", SHAPE_CLASS_ID, kSplinesClassId, []() -> Animatable* { return NewSplines({}); }},
        {"Sphere", GEOMOBJECT_CLASS_ID, kSphereClassId,
         []() -> Animatable* { return NewSphere(0, 0); }},
        {"Bend", GEOMOBJECT_CLASS_ID, kBendClassId,
         []() -> Animatable* { return NewBend(nullptr, 0); }},
    };
    return all;
}

template <class Matches>
ClassDesc* FirstThat(const std::vector<ClassDesc*>& added, Matches matches) {
    for (OwnDescriptor& descriptor : OwnDescriptors()) {
        if (matches(descriptor)) return &descriptor;
    }
    for (ClassDesc* descriptor : added) {
        if (matches(*descriptor)) return descriptor;
    }
    return nullptr;
}

}  // namespace

ClassRegistry& TheClasses() {
    static ClassRegistry registry;
    return registry;
}

void ClassRegistry::Add(ClassDesc* descriptor) {
    if (descriptor && !Find(descriptor->SuperClassID(), descriptor->ClassID()))
        added_.push_back(descriptor);
}

void ClassRegistry::Clear() {
    added_.clear();
}

ClassDesc* ClassRegistry::Find(SClass_ID superClass, Class_ID classId) const {
    return FirstThat(added_, [&](ClassDesc& descriptor) {
        return descriptor.SuperClassID() == superClass && descriptor.ClassID() == classId;
    });
}

ClassDesc* ClassRegistry::Find(SClass_ID superClass, std::string_view className) const {
    return FirstThat(added_, [&](ClassDesc& descriptor) {
        const char* name = descriptor.ClassName();
        return descriptor.SuperClassID() == superClass && name && className == name;
    });
}

}  // namespace headless
