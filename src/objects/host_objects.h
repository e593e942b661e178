#pragma once

#include "host/object.h"

// An object as what it says it is, or null. A super class promises its operations, and a class id
// what stands behind it; nothing else is asked, since the host's classes and those of other
// plug-ins need not have the language's type information.

inline CameraObject* AsCamera(Object* object) {
    const bool isCamera = object && object->SuperClassID() == CAMERA_CLASS_ID;
    return isCamera ? static_cast<CameraObject*>(object) : nullptr;
}

inline ShapeObject* AsShape(Object* object) {
    const bool isShape = object && object->SuperClassID() == SHAPE_CLASS_ID;
    return isShape ? static_cast<ShapeObject*>(object) : nullptr;
}

// What stands in for a triangle mesh that could not be read says the same ids, but cannot be
// converted to one.
inline TriObject* AsTriangleMesh(Object* object) {
    const bool isMesh = object && object->SuperClassID() == GEOMOBJECT_CLASS_ID &&
                        object->ClassID() == kTriObjectClassId &&
                        object->CanConvertToType(kTriObjectClassId);
    return isMesh ? static_cast<TriObject*>(object) : nullptr;
}

// What can be animated on an object the host keeps in those of its parts that are named
// "Parameters".

inline int PartCount(Object* object) {
    return object ? object->NumSubs() : 0;
}

// The "Parameters" at a place among the parts; null if that is another part, or has no parameter at
// this index.
inline Animatable* ParametersAt(Object* object, int part, int index) {
    if (part >= PartCount(object) || object->SubAnimName(part) != "Parameters") return nullptr;
    Animatable* const parameters = object->SubAnim(part);
    return parameters && index < parameters->NumSubs() ? parameters : nullptr;
}

// Runs `visit(parameters, index)` for every parameter of the object. That may end the object, so
// `find()` gives it anew for each step; null: it is gone.
template <class Find, class Visit>
void ForEachParameter(Find find, Visit visit) {
    for (int part = 0; part < PartCount(find()); ++part) {
        for (int index = 0; Animatable* const parameters = ParametersAt(find(), part, index);
             ++index)
            visit(*parameters, index);
    }
}
