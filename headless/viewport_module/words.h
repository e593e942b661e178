#pragma once

#include "headless/draw_list.h"
#include "headless/drawing/view.h"
#include "headless/viewport.h"

namespace headless {

// Writes the caption and the texts of a drawing onto its pixels, and tells in the picture where
// each stands and which names do not: first the caption, then names, as small as it takes for all
// to find room, and then whatever else is free to stand where it belongs. A thin line leads from a
// name that was moved far to its place.
void DrawWords(const DrawList& list, const View& view, Picture& onto);

}  // namespace headless
