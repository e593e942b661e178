#include <cstddef>
#include <vector>

#include "headless/scene/node.h"

namespace headless {
namespace {

// Nodes between a node and the root, used as a stack, since a controller that is asked for its
// value can ask for another node's transform. Kept, so that evaluation allocates nothing.
std::vector<SceneNode*> path;

}  // namespace

Matrix3 SceneNode::GetNodeTM(TimeValue t, Interval* valid) {
    Met("GetNodeTM");
    const std::size_t base = path.size();
    for (SceneNode* node = this; node && !node->IsRootNode(); node = node->parent_)
        path.push_back(node);
    Interval holds = FOREVER;
    Matrix3 world;
    while (path.size() > base) {
        Control* controller = path.back()->transform_;
        path.pop_back();
        if (controller) controller->GetValue(t, &world, holds, CTRL_RELATIVE);
    }
    if (valid) *valid = holds;
    return world;
}

void SceneNode::SetNodeTM(TimeValue t, const Matrix3& world) {
    Met("SetNodeTM");
    if (!transform_) return;
    SetXFormPacket packet;
    packet.command = XFORM_SET;
    if (parent_) packet.tmParent = parent_->GetNodeTM(t, nullptr);
    packet.tmAxis = world;
    transform_->SetValue(t, &packet, 1, CTRL_ABSOLUTE);
}

}  // namespace headless
