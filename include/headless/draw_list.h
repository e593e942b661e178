#pragma once

#include <string>
#include <vector>

#include "headless/headless_api.h"
#include "host/point3.h"

// A drawing as plain data, before it becomes pixels: what the host's viewport hands to the library
// that draws, and what a test can look at.
namespace headless {

// Channels from 0 to 1.
struct Colour {
    float red = 0;
    float green = 0;
    float blue = 0;

    friend constexpr bool operator==(const Colour&, const Colour&) = default;
};

// In world space, host units. The normal of a vertex of a line has no meaning.
struct DrawVertex {
    Point3 place;
    Point3 normal;
    Colour colour;
};

// Lines or triangles that are drawn alike.
struct DrawBatch {
    bool isTriangles = false;     // three vertices each; else lines, of two
    bool isLit = false;           // by a lamp at the viewer, the same from both sides
    bool usesDepth = false;       // hidden by what is nearer, and hides what is farther
    bool cullsBackfaces = false;  // triangles that look away are left out
    std::vector<DrawVertex> vertices;
};

// A word for a place. None covers another.
struct DrawText {
    Point3 place;
    Colour colour;
    std::string text;
    bool isName = true;  // which is moved aside where there is no room, and missed where there is
                         // none at all; else it stands over its place, or is not drawn
};

struct DrawList {
    std::vector<DrawBatch> batches;  // drawn in this order
    std::vector<DrawText> texts;     // on top of all
    std::string caption{};           // in the upper left corner of the picture
};

}  // namespace headless
