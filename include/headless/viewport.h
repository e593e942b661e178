#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "headless/draw_list.h"
#include "headless/headless_api.h"
#include "host/graphics_window.h"
#include "host/types.h"

// The viewport: what a person sees of the running session's scene, and hits with the mouse. Visible
// nodes draw themselves through `Display`, wire colours and selection as on the screen, over a
// ground grid. Pixels come from a library of its own, headless_viewport, which lies beside the
// host's and is loaded when the first picture is asked for; all else works without it.
namespace headless {

struct ViewportSettings {
    int width = 960;  // pixels, 16 to 8,192
    int height = 540;
    std::string camera;                  // look through the one camera of this name; if empty,
    std::vector<TimeValue> framedTimes;  // from the front and above at all that shows at these
                                         // times, at the drawn time if there are none
    bool isWireframe = false;
    bool showsNames = false;  // of two that would cover each other, the first in the scene's order
    bool showsGrid = true;
};

// Rows from top to bottom, three bytes (red, green, blue) a pixel.
struct Picture {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> rgb;
};

// What the viewport draws at a time, in world space. The error is empty, or says in one line why
// there is nothing: no camera of that name, or several.
struct Drawing {
    std::string error;
    DrawList list;
};
HEADLESS_API Drawing DrawScene(const ViewportSettings& settings, TimeValue t);

// What one node draws, where it is in world space, whether it is selected or not; nothing if there
// is no such node.
HEADLESS_API DrawList DrawNode(std::uint32_t handle, TimeValue t);

// The scene as pixels. The result is empty, or says in one line why there is no picture.
HEADLESS_API std::string DrawPicture(const ViewportSettings& settings, TimeValue t, Picture& into);

// Pictures of one size side by side, row by row; `columns` is at least 1.
HEADLESS_API Picture SideBySide(const std::vector<Picture>& pictures, int columns);

// As a PNG file, which is complete or untouched. The result is empty, or says what went wrong.
HEADLESS_API std::string WritePng(const Picture& picture, const std::string& path);

// The nodes that the mouse hits, asked through `HitTest`, by handle in the order of Nodes(); none
// where there is no view. How near to a point counts as hit is each object's own choice, 4 pixels
// with all that are known here; the region's `epsilon` is not asked. The camera that is looked
// through is not hit.
HEADLESS_API std::vector<std::uint32_t> NodesHit(const ViewportSettings& settings, TimeValue t,
                                                 const HitRegion& region);

}  // namespace headless
