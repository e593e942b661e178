#pragma once

#include <array>
#include <cstddef>

#include "host/point3.h"

namespace headless {

// From world space to the picture: a 4 by 4 matrix for row vectors, clip = (x, y, z, 1) × toClip,
// whose clip space is OpenGL's (−w to w on all three axes, y up, nearest at −w).
struct View {
    std::array<std::array<float, 4>, 4> toClip{};
    int width = 0;  // pixels
    int height = 0;
};

// In double, where no finite place and view become infinite.
struct ClipPlace {
    double x = 0;
    double y = 0;
    double z = 0;
    double w = 0;
};
inline ClipPlace ToClip(const View& view, const Point3& p) {
    const auto& m = view.toClip;
    const auto column = [&](std::size_t i) {
        return double{p.x} * double{m[0][i]} + double{p.y} * double{m[1][i]} +
               double{p.z} * double{m[2][i]} + double{m[3][i]};
    };
    return {column(0), column(1), column(2), column(3)};
}

// In pixels from the upper left corner.
struct ScreenPlace {
    double x = 0;
    double y = 0;
};

// Of what is before the viewer: w is above 0.
inline ScreenPlace OnScreen(const View& view, const ClipPlace& p) {
    return {(p.x / p.w + 1) / 2 * view.width, (1 - p.y / p.w) / 2 * view.height};
}

}  // namespace headless
