#include "headless/breaches/breach_book.h"
#include "headless/scene/node.h"
#include "headless/scene/parent_change.h"
#include "headless/scene/scene.h"
#include "headless/scene/timeline.h"

namespace headless {

INode* SceneNode::GetChildNode(int index) {
    Met("GetChildNode");
    if (index < 0 || index >= NumberOfChildren()) return nullptr;
    return children_.At(static_cast<std::size_t>(index));
}

void SceneNode::Hang(SceneNode& parent, std::size_t index) {
    parent.children_.Insert(index, link_);
    parent_ = &parent;
}

void SceneNode::Unhang() {
    if (!parent_) return;
    parent_->children_.Remove(link_);
    parent_ = nullptr;
}

void SceneNode::Abandon() {
    parent_ = nullptr;
    children_.Forget();
}

void SceneNode::AttachChild(INode* child, int keepTM) {
    constexpr const char* kCall = "AttachChild";
    Met(kCall);
    if (!child) return;
    if (!TheScene().Contains(child)) return Book(kGone, kCall);
    if (!TheScene().IsThere(*this)) return;
    auto* const moved = static_cast<SceneNode*>(child);
    if (HangsBelow(*moved)) Book("the node would hang below itself", kCall);
    moved->MoveTo(*this, CurrentTime(), keepTM);
}

void SceneNode::Detach(TimeValue t, int keepTM) {
    Met("Detach");
    if (TheScene().Contains(this)) MoveTo(*TheScene().Root(), t, keepTM);
}

bool SceneNode::HangsBelow(const SceneNode& node) const {
    for (const SceneNode* above = this; above; above = above->parent_) {
        if (above == &node) return true;
    }
    return false;
}

bool SceneNode::Rehang(NodePtr& parent, std::size_t& index) {
    if (!parent_ || !TheScene().IsThere(*parent) || parent->HangsBelow(*this)) return false;
    const NodePtr here = parent_->shared_from_this();
    const std::size_t indexHere = IndexInParent();
    Unhang();
    Hang(*parent, index);
    parent = here;
    index = indexHere;
    return true;
}

void SceneNode::MoveTo(SceneNode& parent, TimeValue t, int keepTM) {
    if (&parent == parent_ || parent.HangsBelow(*this)) return;
    if (keepTM != 0)
        MoveAndKeepWorld(*this, parent, t);
    else
        MoveWithParent(*this, parent);
}

}  // namespace headless
