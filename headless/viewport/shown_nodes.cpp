#include "headless/viewport/shown_nodes.h"

#include <algorithm>
#include <cmath>

#include "headless/drawing/draw_window.h"
#include "headless/scene/scene.h"

namespace headless {
namespace {

bool IsNear(const Point3& p) {
    return std::abs(p.x) <= kFarthest && std::abs(p.y) <= kFarthest && std::abs(p.z) <= kFarthest;
}

Box3 BoxOfObject(SceneNode& node, TimeValue t) {
    Box3 box;
    Object* const shown = node.EvalWorldState(t, true).obj;
    if (!shown) return box;
    DrawWindow window{View{}};
    DrawView view(window);
    shown->GetWorldBoundBox(t, &node, &view, box);
    return box;
}

bool LiesFlat(const Box3& box) {
    return box.pmax.z <= box.pmin.z && box.pmax.x > box.pmin.x && box.pmax.y > box.pmin.y;
}

}  // namespace

std::vector<SceneNode*> ShownNodes() {
    std::vector<SceneNode*> nodes = TheScene().InOrder();
    std::erase_if(nodes, [](SceneNode* node) { return node->IsHidden(0, false); });
    return nodes;
}

CameraObject* CameraOf(SceneNode& node, TimeValue t) {
    return dynamic_cast<CameraObject*>(node.EvalWorldState(t, true).obj);
}

Box3 WorldBox(SceneNode& node, TimeValue t) {
    Box3 box = BoxOfObject(node, t);
    if (box.IsEmpty()) {
        box = Box3();
        box += node.GetNodeTM(t, nullptr).GetTrans();
    }
    return IsNear(box.pmin) && IsNear(box.pmax) ? box : Box3();
}

std::vector<ShownBox> ShownBoxes(TimeValue t) {
    std::vector<ShownBox> shown;
    for (SceneNode* node : ShownNodes()) {
        if (CameraOf(*node, t)) continue;
        if (const Box3 box = WorldBox(*node, t); !box.IsEmpty())
            shown.push_back({node->Handle(), box});
    }
    return shown;
}

std::vector<ShownBox> FramedBoxes(TimeValue t) {
    const auto isFlat = [](const ShownBox& shown) { return LiesFlat(shown.box); };
    std::vector<ShownBox> framed = ShownBoxes(t);
    if (!std::ranges::all_of(framed, isFlat)) std::erase_if(framed, isFlat);
    return framed;
}

void Grow(Box3& box, const Box3& around) {
    if (around.IsEmpty()) return;
    box += around.pmin;
    box += around.pmax;
}

std::array<Vector, 8> Corners(const Box3& box) {
    std::array<Vector, 8> corners;
    for (unsigned i = 0; i < 8; ++i)
        corners[i] = Vector(Point3{i & 1 ? box.pmax.x : box.pmin.x, i & 2 ? box.pmax.y : box.pmin.y,
                                   i & 4 ? box.pmax.z : box.pmin.z});
    return corners;
}

}  // namespace headless
