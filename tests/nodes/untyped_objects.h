#pragma once

#include "host/control.h"
#include "host/object.h"

// Objects of classes that were compiled without the language's type information, as the host's own
// and those of other plug-ins may be. They are the caller's.
namespace untyped {

Object* NewCamera();  // its one parameter bears a controller that says it is a ScalarControl
Object* NewShape();   // of one curve
Object* NewMesh(SClass_ID superClass, Class_ID id);  // triangles, whatever it says it is
Object* NewHelper(Class_ID id);
Control* NewTransform(Class_ID id);

}  // namespace untyped
