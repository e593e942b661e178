#include "headless/classes/own_descriptors.h"

#include "headless/control/factory.h"
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

// An object as its creator hands it on: by the address of its Object or Control part, which is
// that of its Animatable part, since none of these has a second base.
Animatable* Position() {
    return NewControl(CTRL_MATRIX3_CLASS_ID, kPositionRotationScaleClassId);
}
Animatable* Linear() {
    return NewControl(CTRL_FLOAT_CLASS_ID, kLinearFloatClassId);
}
Animatable* Camera() {
    return NewFreeCamera();
}
Animatable* CameraParameters() {
    return NewCameraParameters();
}
Animatable* TriangleMesh() {
    return CreateNewTriObject();
}
Animatable* Line() {
    return NewSplines({});
}
Animatable* Ball() {
    return NewSphere(0, 0);
}
Animatable* Bend() {
    return NewBend(nullptr, 0);
}

}  // namespace

std::span<ClassDesc* const> OwnDescriptors() {
    static OwnDescriptor prs("Position/Rotation/Scale", CTRL_MATRIX3_CLASS_ID,
                             kPositionRotationScaleClassId, Position);
    static OwnDescriptor linear("Linear Float", CTRL_FLOAT_CLASS_ID, kLinearFloatClassId, Linear);
    static OwnDescriptor camera("Free Camera", CAMERA_CLASS_ID, kFreeCameraClassId, Camera);
    static OwnDescriptor parameters("Camera Parameters", kCameraParametersSuperClass,
                                    kFreeCameraClassId, CameraParameters);
    static OwnDescriptor mesh("Mesh", GEOMOBJECT_CLASS_ID, kTriObjectClassId, TriangleMesh);
    static OwnDescriptor line("Line", SHAPE_CLASS_ID, kSplinesClassId, Line);
    static OwnDescriptor sphere("Sphere", GEOMOBJECT_CLASS_ID, kSphereClassId, Ball);
    static OwnDescriptor bend("Bend", GEOMOBJECT_CLASS_ID, kBendClassId, Bend);
    static ClassDesc* const all[] = {&prs,  &linear, &camera, &parameters,
                                     &mesh, &line,   &sphere, &bend};
    return all;
}

}  // namespace headless
