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
