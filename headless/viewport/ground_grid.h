#pragma once

#include <algorithm>
#include <vector>

#include "headless/drawing/draw_window.h"
#include "host/box3.h"
#include "host/units.h"

namespace headless {

// Host units in a metre, by which a picture is laid out. Of a scene with a unit that is beyond all
// that people measure, the nearest that a picture can be made with.
inline double UnitsPerMetre() {
    return std::clamp(1 / GetMasterScale(UNITS_METERS), 1e-9, 1e9);
}

// Lines on the ground, z = 0, below what a picture is about and some way around it: a metre apart,
// or two, five, ten, or a half, a fifth and so on, so that there are neither many nor few.
struct GroundGrid {
    double step = 1;  // host units, as all here
    Box3 area;
};
GroundGrid GridBelow(const std::vector<Box3>& framed);

// The lines through the origin are brighter.
void DrawGrid(const GroundGrid& grid, DrawWindow& window);

}  // namespace headless
