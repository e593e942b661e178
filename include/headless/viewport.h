#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "headless/draw_list.h"
#include "headless/headless_api.h"
#include "host/box3.h"
#include "host/graphics_window.h"
#include "host/types.h"

// The viewport: what a person sees of the running session's scene, and hits with the mouse. Visible
// nodes draw themselves through `Display`, wire colours and selection as on the screen, over a
// ground grid. Pixels come from a library of its own, headless_viewport, which lies beside the
// host's and is loaded when the first picture is asked for; all else works without it.
namespace headless {

// From where the viewport's own camera looks.
enum class ViewSide {
    kQuarter,  // from the front, a little from its right and from above
    kFront,    // along the Core's -Z, which is the host's +Y
    kSide,     // along the Core's -X, which is the host's -X
    kTop,      // down; the Core's -Z is up in the picture
};

// Where the viewport's own camera is through a take, for all of its pictures.
struct CameraPath {
    std::vector<TimeValue> times;  // rising; none: it is aimed anew at what shows in each picture
    std::vector<Point3> places;  // host units, for each time, up to which it stands there from the
                                 // one before; a single one: it stands still
    Box3 framed;                 // world space, around all that the pictures are about
};

struct ViewportSettings {
    int width = 960;  // pixels, 16 to 8,192
    int height = 540;
    std::string camera{};  // look through the one camera of this name; if empty, from a side
    ViewSide side = ViewSide::kQuarter;
    CameraPath path{};  // of this size and side; its grid holds for a camera of the scene too
    bool isWireframe = false;
    bool showsNames = false;                // of all nodes that are drawn
    std::vector<std::string> namesAsked{};  // also of nodes that are not drawn
    bool showsGrid = true;                  // its lines say metres of the Core's X or Z
    bool showsCameras = false;
    std::string caption{};  // in the upper left corner
};

// A camera that holds all that shows at these times: one that stands still, or one that keeps
// direction and distance and whose middle goes along with what moves. `each` is told of each time
// that was looked at, of one that a follower goes along three times, and may throw.
using EachTime = std::function<void()>;
HEADLESS_API CameraPath PathThrough(
    const ViewportSettings& settings, std::vector<TimeValue> times, bool follows,
    const EachTime& each = [] {});

// What is written in a picture, and where: pixels, the last ones not included.
struct PictureWord {
    std::string text;
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
};

// Rows from top to bottom, three bytes (red, green, blue) a pixel.
struct Picture {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> rgb;
    std::vector<PictureWord> words{};             // none covers another
    std::vector<std::string> namesWithoutRoom{};  // of those whose places are in the picture
    std::vector<std::string> namesOutside{};      // whose places are not
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

// Pictures of one size side by side: nothing but background at first, and then what is put there.
// Words of a picture that is put there stay behind. The place lies in the sheet.
HEADLESS_API Picture EmptySheet(int width, int height);
HEADLESS_API void PutOnSheet(const Picture& picture, int left, int top, Picture& sheet);

// As a PNG file, which is complete or untouched. The result is empty, or says what went wrong.
HEADLESS_API std::string WritePng(const Picture& picture, const std::string& path);

// The nodes that the mouse hits, asked through `HitTest`, by handle in the order of Nodes(); none
// where there is no view. How near to a point counts as hit is each object's own choice, 4 pixels
// with all that are known here; the region's `epsilon` is not asked. What is not drawn is not hit:
// neither the camera that is looked through, nor others unless the settings show cameras.
HEADLESS_API std::vector<std::uint32_t> NodesHit(const ViewportSettings& settings, TimeValue t,
                                                 const HitRegion& region);

}  // namespace headless
