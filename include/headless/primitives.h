#pragma once

#include <vector>

#include "headless/headless_api.h"
#include "host/object.h"

// Objects that a person draws with the host's own tools. Each is new, and the caller's until
// Interface::CreateObjectNode puts it into the scene.
namespace headless {

// One open curve through its points, in object space and host units.
using Polyline = std::vector<Point3>;

HEADLESS_API ShapeObject* NewPolylines(std::vector<Polyline> curves);

// A sphere around the object's origin, with `segments` faces around its equator (3 to 200). It
// turns into a triangle mesh where it is asked for one.
HEADLESS_API Object* NewSphere(float radius, int segments);

}  // namespace headless
