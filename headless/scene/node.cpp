#include "headless/scene/node.h"

#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

#include "headless/breaches/breach_book.h"
#include "headless/hold/undo_stream.h"
#include "headless/scene/scene.h"
#include "headless/scene/selection.h"

INode::~INode() = default;

namespace headless {
namespace {

// Nodes between a node and the root, used as a stack, since a controller that is asked for its
// value can ask for another node's transform. Kept, so that evaluation allocates nothing.
std::vector<SceneNode*> path;

}  // namespace

NodePtr SceneNode::New(std::uint32_t handle) {
    return NodePtr(new SceneNode(handle), [](SceneNode* node) { delete node; });
}

const SceneNode& SceneNode::Met(const char* operation) const {
    if (left_) Book(kGone, operation);
    return *this;
}

void SceneNode::SetName(const char* name) {
    Met("SetName");
    std::string next = name ? name : "";
    if (next == look_.name) return;
    Undoably([self = shared_from_this(), other = std::move(next)]() mutable {
        std::swap(self->look_.name, other);
        if (self->parent_) TheScene().Names().Replace(other, self->look_.name);
    });
}

void SceneNode::Hide(bool hide) {
    Met("Hide");
    if (hide == look_.isHidden) return;
    Undoably([self = shared_from_this()] { self->look_.isHidden = !self->look_.isHidden; });
}

bool SceneNode::IsHidden(std::uint32_t, bool) {
    Met("IsHidden");
    return look_.isHidden;
}

const ObjectState& SceneNode::EvalWorldState(TimeValue t, bool) {
    Met("EvalWorldState");
    evaluated_ = object_ ? object_->Eval(t) : ObjectState{};
    return evaluated_;
}

bool SceneNode::SetTMController(Control* controller) {
    Met("SetTMController");
    if (!controller || controller->SuperClassID() != CTRL_MATRIX3_CLASS_ID || IsRootNode())
        return false;
    ReplaceReference(kTransform, controller);
    return true;
}

void SceneNode::SetObject(Object* object) {
    ReplaceReference(kObject, object);
}

void SceneNode::SetWireColor(std::uint32_t colour) {
    Met("SetWireColor");
    Undoably([self = shared_from_this(), other = colour]() mutable {
        std::swap(self->look_.wireColour, other);
    });
}

bool SceneNode::UserPropExists(const HostString& key) {
    Met("UserPropExists");
    return look_.userProps.contains(key);
}

bool SceneNode::GetUserPropString(const HostString& key, HostString& value) {
    Met("GetUserPropString");
    const auto found = look_.userProps.find(key);
    if (found == look_.userProps.end()) return false;
    value = found->second;
    return true;
}

void SceneNode::SetUserPropString(const HostString& key, const HostString& value) {
    Met("SetUserPropString");
    Undoably([self = shared_from_this(), key, other = std::optional(value)]() mutable {
        std::optional<HostString> now;
        if (const auto entry = self->look_.userProps.extract(key)) now = std::move(entry.mapped());
        if (other) self->look_.userProps[key] = std::move(*other);
        other = std::move(now);
    });
}

Animatable* SceneNode::SubAnim(int index) {
    return index == 0 ? transform_ : nullptr;
}

HostString SceneNode::SubAnimName(int index) {
    return index == 0 ? "Transform" : "";
}

bool SceneNode::AssignController(Animatable* controller, int index) {
    return index == 0 && SetTMController(dynamic_cast<Control*>(controller));
}

RefTargetHandle SceneNode::GetReference(int index) {
    if (index == kTransform) return transform_;
    if (index == kObject) return object_;
    return nullptr;
}

void SceneNode::SetReference(int index, RefTargetHandle target) {
    if (index == kObject) object_ = static_cast<Object*>(target);
    if (index != kTransform) return;
    std::optional<EditChange> change;
    if (selected_) change.emplace();
    transform_ = static_cast<Control*>(target);
}

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
    packet.tmAxis = world;
    if (parent_ && !parent_->IsRootNode()) packet.tmParent = parent_->GetNodeTM(t, nullptr);
    transform_->SetValue(t, &packet, 1, CTRL_ABSOLUTE);
}

}  // namespace headless
