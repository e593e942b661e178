#pragma once

#include <vector>

#include "headless/drawing/draw_window.h"
#include "host/box3.h"

namespace headless {

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
