#pragma once

#include "host/object.h"
#include "host/types.h"

namespace headless {

// Class ids of the host's own objects, and how an empty one of each is made.
inline constexpr Class_ID kFreeCameraClassId{0x1001, 0};
inline constexpr Class_ID kSplinesClassId{0x1002, 0};
inline constexpr Class_ID kSphereClassId{0x1003, 0};
inline constexpr Class_ID kBendClassId{0x1004, 0};

// What a free camera keeps its animated parameters in, an object of a super class of its own.
inline constexpr SClass_ID kCameraParametersSuperClass = 8;

CameraObject* NewFreeCamera();

ReferenceTarget* NewCameraParameters();

// What an object is as triangles; empty if it cannot be any.
Mesh MeshOf(Object& object, TimeValue t);

}  // namespace headless
