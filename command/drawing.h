#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "headless/primitives.h"
#include "host/point3.h"

namespace headless {

// What a person draws with the host's own tools; sizes and places are in host units.
struct GroundSketch {
    float side;
    int divisions;
};
struct SphereSketch {
    float radius;
    int segments;
};
struct PathSketch {
    std::vector<Point3> places;  // two or more
    bool isClosed;
    bool isSmooth;  // curved through the places, else straight from one to the next
};

struct DrawOptions {
    std::string scene;  // that is drawn into; empty for a new one
    std::variant<GroundSketch, SphereSketch, PathSketch> sketch;
    float bendDegreesPerSecond = 0;  // about the object's x axis
    std::optional<GuideLook> guide;  // a guide object of its shape instead, which does not bend
    Point3 at;
    std::string name;    // empty for the host to choose
    std::string target;  // where to save the scene
};

struct DrawResult {
    std::string name;
    std::uint32_t handle = 0;
    std::size_t nodes = 0;                // in the scene now
    std::vector<std::string> complaints;  // about the scene files
};

// Draws without a Core, so that what the scene holds of one is kept as it is. What cannot be done
// is thrown as a Failure.
DrawResult Draw(const DrawOptions& options);

}  // namespace headless
