#include "headless/objects/own_classes.h"
#include "host/node.h"
#include "host/object.h"

BaseObject::~BaseObject() = default;

int BaseObject::HitTest(TimeValue, INode*, int, int, int, IPoint2*, ViewExp*) {
    return 0;
}

int BaseObject::Display(TimeValue, INode*, ViewExp*, int) {
    return 0;
}

void BaseObject::GetWorldBoundBox(TimeValue t, INode* node, ViewExp* view, Box3& box) {
    GetLocalBoundBox(t, node, view, box);
    if (node) box = box * node->GetObjectTM(t);
}

void BaseObject::GetLocalBoundBox(TimeValue, INode*, ViewExp*, Box3& box) {
    box = Box3();
}

HostString BaseObject::GetObjectName() {
    return "Object";
}

Object::~Object() = default;

void Object::InitNodeName(HostString& name) {
    name = GetObjectName();
}

ObjectState Object::Eval(TimeValue) {
    return {this};
}

int Object::CanConvertToType(Class_ID type) {
    return type == ClassID() ? 1 : 0;
}

Object* Object::ConvertToType(TimeValue, Class_ID type) {
    return type == ClassID() ? this : nullptr;
}

HelperObject::~HelperObject() = default;
TriObject::~TriObject() = default;
CameraObject::~CameraObject() = default;
ShapeObject::~ShapeObject() = default;

namespace headless {

// Frees what a conversion has given, unless that is the object itself.
Mesh MeshOf(Object& object, TimeValue t) {
    Mesh mesh;
    Object* const converted = object.ConvertToType(t, kTriObjectClassId);
    if (auto* const triangles = dynamic_cast<TriObject*>(converted)) mesh = triangles->GetMesh();
    if (converted && converted != &object) converted->DeleteThis();
    return mesh;
}

}  // namespace headless
