#include "tests/nodes/untyped_objects.h"

#include "controllers/scalar_control.h"

namespace untyped {
namespace {

// What says that it is of some class, and deletes itself.
template <class Base>
class Thing : public Base {
  public:
    Thing(SClass_ID superClass, Class_ID id) : superClass_(superClass), id_(id) {}
    SClass_ID SuperClassID() override { return superClass_; }
    Class_ID ClassID() override { return id_; }
    void GetClassName(HostString& name) override { name = "Untyped"; }
    void DeleteThis() override { delete this; }

  private:
    SClass_ID superClass_;
    Class_ID id_;
};

class Constant final : public Thing<Control> {
  public:
    using Thing::Thing;
    void GetValue(TimeValue, void*, Interval&, GetSetMethod) override {}
    void SetValue(TimeValue, void*, int, GetSetMethod) override {}
};

class Parameters final : public Thing<Animatable> {
  public:
    Parameters() : Thing(0, {}) {}
    int NumSubs() override { return 1; }
    Animatable* SubAnim(int) override { return &control_; }

  private:
    Constant control_{ScalarControl::kSuperClassID, ScalarControl::kClassID};
};

class Camera final : public Thing<CameraObject> {
  public:
    Camera() : Thing(CAMERA_CLASS_ID, {1, 1}) {}
    int NumSubs() override { return 1; }
    Animatable* SubAnim(int) override { return &parameters_; }
    HostString SubAnimName(int) override { return "Parameters"; }
    void SetFOV(TimeValue, float radians) override { radians_ = radians; }
    float GetFOV(TimeValue, Interval&) override { return radians_; }
    int SetFOVType(int) override { return 0; }
    int GetFOVType() override { return 0; }
    void SetTDist(TimeValue, float) override {}
    float GetTDist(TimeValue, Interval&) override { return 0; }
    void SetConeState(int) override {}
    void SetHorzLineState(int) override {}
    void Enable(int) override {}

  private:
    Parameters parameters_;
    float radians_ = 0;
};

class Shape final : public Thing<ShapeObject> {
  public:
    Shape() : Thing(SHAPE_CLASS_ID, {1, 2}) {}
    int NumberOfCurves() override { return 1; }
    float LengthOfCurve(TimeValue, int) override { return 7; }
    Point3 InterpCurve3D(TimeValue, int, float, int) override { return {}; }
};

class Triangles final : public Thing<TriObject> {
  public:
    using Thing::Thing;
    int CanConvertToType(Class_ID) override { return 1; }
    Mesh& GetMesh() override { return mesh_; }

  private:
    Mesh mesh_;
};

}  // namespace

Object* NewCamera() {
    return new Camera;
}
Object* NewShape() {
    return new Shape;
}
Object* NewMesh(SClass_ID superClass, Class_ID id) {
    return new Triangles(superClass, id);
}
Object* NewHelper(Class_ID id) {
    return new Thing<HelperObject>(HELPER_CLASS_ID, id);
}
Control* NewTransform(Class_ID id) {
    return new Constant(CTRL_MATRIX3_CLASS_ID, id);
}

}  // namespace untyped
