#include "headless/viewport/framed_boxes.h"

#include <algorithm>

#include "headless/viewport/shown_nodes.h"

namespace headless {
namespace {

bool LiesFlat(const Box3& box) {
    return box.pmax.z <= box.pmin.z && box.pmax.x > box.pmin.x && box.pmax.y > box.pmin.y;
}

}  // namespace

std::vector<Box3> FramedBoxes(const ViewportSettings& settings, TimeValue t) {
    std::vector<Box3> framed = ShownBoxes(t);
    if (!settings.framedTimes.empty()) framed.clear();
    for (const TimeValue time : settings.framedTimes)
        std::ranges::copy(ShownBoxes(time), std::back_inserter(framed));
    if (!std::ranges::all_of(framed, LiesFlat)) std::erase_if(framed, LiesFlat);
    return framed;
}

std::vector<Box3> ShownBoxes(TimeValue t) {
    std::vector<Box3> boxes;
    for (SceneNode* node : ShownNodes()) {
        if (CameraOf(*node, t)) continue;
        if (const Box3 box = WorldBox(*node, t); !box.IsEmpty()) boxes.push_back(box);
    }
    return boxes;
}

std::array<Vector, 8> Corners(const Box3& box) {
    std::array<Vector, 8> corners;
    for (unsigned i = 0; i < 8; ++i)
        corners[i] = Vector(Point3{i & 1 ? box.pmax.x : box.pmin.x, i & 2 ? box.pmax.y : box.pmin.y,
                                   i & 4 ? box.pmax.z : box.pmin.z});
    return corners;
}

}  // namespace headless
