#pragma once

#include "headless/draw_list.h"
#include "headless/drawing/view.h"
#include "headless/viewport.h"

namespace headless {

// Writes the texts of a drawing onto its pixels, each to the right of its place with a dark rim
// around the letters. Those behind the viewer, outside the picture or over an earlier one are left
// out.
void DrawNames(const DrawList& list, const View& view, Picture& onto);

}  // namespace headless
