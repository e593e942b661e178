#pragma once

#include <algorithm>

#include "headless/drawing/draw_window.h"
#include "headless/drawing/view.h"
#include "host/box3.h"
#include "host/types.h"
#include "host/units.h"

namespace headless {

// Host units in a metre, by which a picture is laid out. Of a scene with a unit that is beyond all
// that people measure, the nearest that a picture can be made with.
inline double UnitsPerMetre() {
    return std::clamp(1 / GetMasterScale(UNITS_METERS), 1e-9, 1e9);
}

// Lines on the ground, z = 0, below all that pictures are about and a good step around it: a metre
// apart, or two, five, ten, or a half, a fifth and so on, so that there are neither few nor more
// than a picture so many pixels wide has room to name.
struct GroundGrid {
    double step = 1;  // host units, as all here
    Box3 area;
};
GroundGrid GridBelow(const Box3& framed, int width);

// The lines through the origin are brighter.
void DrawGrid(const GroundGrid& grid, DrawWindow& window);

// Says at the end of each line where it is, in metres of the Core's X or Z: below, of those that
// run away from the viewer, and on the right of those that run across; those next to the origin go
// first where there is no room for all. It stands in the picture and not upon what the picture is
// about at that time.
void WriteMetres(const GroundGrid& grid, TimeValue t, DrawWindow& window);

}  // namespace headless
