#include "headless/viewport/shown_nodes.h"

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

}  // namespace headless
