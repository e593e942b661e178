#pragma once

#include "host/box3.h"
#include "host/graphics_window.h"
#include "host/mesh.h"
#include "host/reference.h"

class INode;
class Object;

// What an object has become at a time, after whatever modifies it.
struct ObjectState {
    Object* obj = nullptr;
};

// A hit test answers 0 where nothing was hit. Display answers 0. By default there is nothing to see
// and to hit, and the box in the world is the local one where the node is.
class HOST_API BaseObject : public ReferenceTarget {
  public:
    virtual int HitTest(TimeValue t, INode* node, int type, int crossing, int flags, IPoint2* point,
                        ViewExp* view);
    virtual int Display(TimeValue t, INode* node, ViewExp* view, int flags);
    virtual void GetWorldBoundBox(TimeValue t, INode* node, ViewExp* view, Box3& box);
    virtual void GetLocalBoundBox(TimeValue t, INode* node, ViewExp* view, Box3& box);
    virtual HostString GetObjectName();

    ~BaseObject() override;
};

// What a scene node can show.
class HOST_API Object : public BaseObject {
  public:
    virtual void InitNodeName(HostString& name);  // the name that a new node gets
    virtual ObjectState Eval(TimeValue t);

    // A conversion gives this object itself if it is of the class already, else a new object of the
    // caller's, to be freed with DeleteThis.
    virtual int CanConvertToType(Class_ID type);
    virtual Object* ConvertToType(TimeValue t, Class_ID type);

    ~Object() override;
};

// Base of the guide objects that show in viewports alone.
class HOST_API HelperObject : public Object {
  public:
    SClass_ID SuperClassID() override { return HELPER_CLASS_ID; }
    ~HelperObject() override;
};

// The host's triangle-mesh object.
class HOST_API TriObject : public Object {
  public:
    virtual Mesh& GetMesh() = 0;
    SClass_ID SuperClassID() override { return GEOMOBJECT_CLASS_ID; }
    Class_ID ClassID() override { return kTriObjectClassId; }
    ~TriObject() override;
};

// A new triangle-mesh object without faces; null if the host has none to give.
HOST_API TriObject* CreateNewTriObject();

// A camera looks along its own negative z axis. Angles are radians; a parameter that is set in
// animate mode becomes a key of its controller, found as "FOV" and "Target Distance" below the part
// "Parameters".
class HOST_API CameraObject : public Object {
  public:
    SClass_ID SuperClassID() override { return CAMERA_CLASS_ID; }

    virtual void SetFOV(TimeValue t, float radians) = 0;
    virtual float GetFOV(TimeValue t, Interval& valid) = 0;
    virtual int SetFOVType(int type) = 0;  // 0 across the width, 1 the height, 2 the diagonal
    virtual int GetFOVType() = 0;
    virtual void SetTDist(TimeValue t, float hostUnits) = 0;
    virtual float GetTDist(TimeValue t, Interval& valid) = 0;
    virtual void SetConeState(int show) = 0;
    virtual void SetHorzLineState(int show) = 0;
    virtual void Enable(int enable) = 0;

    ~CameraObject() override;
};

// Parameter types of ShapeObject::InterpCurve3D.
inline constexpr int PARAM_SIMPLE = 0;
inline constexpr int PARAM_NORMALIZED = 1;  // 0 to 1 along the length

// An object of curves, in object space.
class HOST_API ShapeObject : public Object {
  public:
    SClass_ID SuperClassID() override { return SHAPE_CLASS_ID; }

    virtual int NumberOfCurves() = 0;
    virtual float LengthOfCurve(TimeValue t, int curve) = 0;
    virtual Point3 InterpCurve3D(TimeValue t, int curve, float parameter, int parameterType) = 0;

    ~ShapeObject() override;
};
