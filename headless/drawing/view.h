#pragma once

#include <array>

#include "host/graphics_window.h"
#include "host/point3.h"

namespace headless {

// From world space to the picture: a 4 by 4 matrix for row vectors, clip = (x, y, z, 1) × toClip,
// whose clip space is OpenGL's (−w to w on all three axes, y up, nearest at −w).
struct View {
    std::array<std::array<float, 4>, 4> toClip{};
    int width = 0;  // pixels
    int height = 0;
};

}  // namespace headless
