#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "headless/draw_list.h"
#include "headless/drawing/view.h"
#include "headless/viewport.h"

// What the module headless_viewport exports. Host and module are built together and share one C++
// library; nothing is thrown across.
namespace headless {

// What lies behind the scene.
inline constexpr Colour kBackground{0.19F, 0.21F, 0.24F};

inline std::uint8_t Byte(float channel) {
    return static_cast<std::uint8_t>(channel * 255 + 0.5F);
}

// How many pixels each pixel of a letter takes: more in a picture of many lines.
inline int LetterSize(int width, int height) {
    constexpr int kPixelsForLarger = 1000;
    return 1 + std::min(width, height) / kPixelsForLarger;
}

inline constexpr char kViewportModule[] = "headless_viewport";

// Draws the list as the view shows it. False, and one line in `error`, if there is no picture.
inline constexpr char kDrawPixels[] = "DrawPixels";
using DrawPixelsRoutine = bool(const DrawList& list, const View& view, Picture& into,
                               std::string& error);

// The bytes of a PNG file, the same ones for the same picture. False, and one line in `error`, if
// there are none.
inline constexpr char kEncodePng[] = "EncodePng";
using EncodePngRoutine = bool(const Picture& picture, std::vector<std::uint8_t>& into,
                              std::string& error);

}  // namespace headless
