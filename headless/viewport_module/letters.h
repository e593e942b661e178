#pragma once

#include <string_view>

#include "headless/draw_list.h"
#include "headless/viewport.h"
#include "host/types.h"

// Letters of whole pixels. All bytes but the printable ones of ASCII look alike.
namespace headless {

inline constexpr int kLetterHeight = 9;  // from the top of a capital to below the line

// In pixels at the size 1; at the size 2 all is twice as large, and so on.
int WidthOf(std::string_view text);

// A pixel of the picture, if it is one. `share` is how much of the colour shows.
void Dot(Picture& picture, int x, int y, const Colour& colour, float share = 1);

// With a dark rim, a pixel wide.
void DrawRimmed(std::string_view text, const IPoint2& corner, int size, const Colour& colour,
                Picture& onto);

}  // namespace headless
