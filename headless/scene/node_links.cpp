#include <algorithm>
#include <utility>

#include "breaches/breach_book.h"
#include "host/animate.h"
#include "host/hold.h"
#include "objects/undoable.h"
#include "scene/node.h"
#include "scene/scene.h"
#include "scene/timeline.h"

namespace headless {

INode* SceneNode::GetChildNode(int index) {
    Met("GetChildNode");
    if (index < 0 || index >= NumberOfChildren()) return nullptr;
    return children_[static_cast<std::size_t>(index)];
}

std::size_t SceneNode::IndexInParent() const {
    const auto& siblings = parent_->children_;
    return static_cast<std::size_t>(std::find(siblings.begin(), siblings.end(), this) -
                                    siblings.begin());
}

void SceneNode::Hang(SceneNode& parent, std::size_t index) {
    auto& siblings = parent.children_;
    const auto place = static_cast<std::ptrdiff_t>(std::min(index, siblings.size()));
    siblings.insert(siblings.begin() + place, this);
    parent_ = &parent;
}

void SceneNode::Unhang() {
    if (!parent_) return;
    parent_->children_.erase(parent_->children_.begin() +
                             static_cast<std::ptrdiff_t>(IndexInParent()));
    parent_ = nullptr;
}

void SceneNode::Abandon() {
    parent_ = nullptr;
    children_.clear();
}

void SceneNode::AttachChild(INode* child, int keepTM) {
    constexpr const char* kCall = "AttachChild";
    Met(kCall);
    if (child && !TheScene().Contains(child)) Book(kGone, kCall);
    if (!TheScene().Contains(child) || !TheScene().IsThere(*this)) return;
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

namespace {

// The parents' matrices of a move that keeps the world transform; swapped at every flip.
struct KeptTransform {
    TimeValue t;
    Matrix3 from;
    Matrix3 to;
    Matrix3 world;
};

void Keep(SceneNode& node, KeptTransform& kept) {
    Control* controller = node.GetTMController();
    const bool adapted =
        controller && controller->ChangeParents(kept.t, kept.from, kept.to, kept.world) != 0;
    std::swap(kept.from, kept.to);
    // What a controller cannot adapt is set anew, which is a record of its own.
    if (adapted || theHold.RestoreOrRedoing()) return;
    SuspendAnimate();
    node.SetNodeTM(kept.t, kept.world);
    ResumeAnimate();
}

}  // namespace

void SceneNode::MoveTo(SceneNode& parent, TimeValue t, int keepTM) {
    if (&parent == parent_ || parent.HangsBelow(*this)) return;
    KeptTransform kept{t, {}, {}, {}};
    if (keepTM != 0) {
        kept.from = parent_->GetNodeTM(t, nullptr);
        kept.to = parent.GetNodeTM(t, nullptr);
        kept.world = GetNodeTM(t, nullptr);
    }
    Undoably([self = shared_from_this(), other = parent.shared_from_this(),
              index = parent.children_.size(), keepTM, kept]() mutable {
        if (!self->parent_ || !TheScene().IsThere(*other) || other->HangsBelow(*self)) return;
        const NodePtr here = self->parent_->shared_from_this();
        const std::size_t indexHere = self->IndexInParent();
        self->Unhang();
        self->Hang(*other, index);
        other = here;
        index = indexHere;
        if (keepTM != 0) Keep(*self, kept);
    });
}

}  // namespace headless
