#pragma once

#include <array>
#include <vector>

#include "headless/headless_api.h"
#include "host/object.h"

// Objects that a person draws with the host's own tools. Each is new, and the caller's until
// Interface::CreateObjectNode puts it into the scene. Places are in object space and host units.
namespace headless {

// A point of a curve with its two Bézier handles, as places. A segment between two knots whose
// facing handles lie on them is a straight line.
struct Knot {
    Point3 in;
    Point3 place;
    Point3 out;
};
inline Knot Corner(const Point3& place) {
    return {place, place, place};
}

struct Spline {
    std::vector<Knot> knots;
    bool isClosed = false;  // a last segment leads back to the first knot
};
inline Spline StraightLines(const std::vector<Point3>& places) {
    Spline open;
    for (const Point3& place : places)
        open.knots.push_back(Corner(place));
    return open;
}

// A shape of curves. Where it is asked for a triangle mesh it becomes thin tubes along them.
HEADLESS_API ShapeObject* NewSplines(std::vector<Spline> splines);

// A sphere around the object's origin, with `segments` faces around its equator (3 to 1,024; the
// last makes a million faces). It turns into a triangle mesh where it is asked for one.
HEADLESS_API Object* NewSphere(float radius, int segments);

// A square around the origin in the plane z = 0, looking up, as a triangle mesh of
// 2 × divisions × divisions faces (divisions from 1 to 1,000).
HEADLESS_API TriObject* NewGround(float side, int divisions);

// What `base` shows, bent over its x axis: a straight line along z becomes an arc of
// `degreesPerSecond` × seconds of scene time. It takes the base over. A base that is a triangle
// mesh gives a triangle mesh at each time; any other is converted when it is asked for one.
HEADLESS_API Object* NewBend(Object* base, float degreesPerSecond);

struct GuideLook {
    std::array<float, 3> colour{1, 0, 0};  // red, green, blue, 0 to 1
    bool isWireframe = true;
};

// A guide object of the loaded plug-in, which shows in viewports alone: it reads the triangle mesh
// that `shown` is at time 0 in the form that scene files have of it (docs/scene-file.md). It takes
// `shown` over. Null if no loaded plug-in has the class.
HEADLESS_API Object* NewGuide(Object* shown, const GuideLook& look);

}  // namespace headless
