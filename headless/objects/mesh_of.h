#pragma once

#include "host/object.h"

namespace headless {

// What an object is as triangles; empty if it cannot be any.
Mesh MeshOf(Object& object, TimeValue t);

}  // namespace headless
