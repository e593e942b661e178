#include "headless/scene/node.h"

#include <optional>
#include <utility>

#include "headless/breaches/breach_book.h"
#include "headless/objects/undoable.h"
#include "headless/scene/edit_watch.h"
#include "headless/scene/scene.h"

INode::~INode() = default;

namespace headless {

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

}  // namespace headless
