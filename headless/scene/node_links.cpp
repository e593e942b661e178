#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include "headless/breaches/breach_book.h"
#include "headless/control/animate_mode.h"
#include "headless/hold/graveyard.h"
#include "headless/references/copy_map.h"
#include "headless/references/reference_record.h"
#include "headless/scene/node.h"
#include "headless/scene/scene.h"
#include "headless/scene/time_and_units.h"
#include "host/hold.h"

// A change of parents rewrites the keys of a controller without a record, and cannot be worked out
// backwards: where a parent flattens space, all keys become one. So while a hold is open it is a
// copy that is adapted and takes the place of the controller, which stays as it was, at its
// address, and comes back by undo. Records of key changes meet the controller that they name,
// since undo goes through them in order. The copy takes the place for all who share the controller,
// and what it refers to is copied and replaced with it.
namespace headless {
namespace {

using Replacements = std::vector<std::unique_ptr<ReferenceRecord>>;

// The node's move, and the controllers that were replaced with it.
class MoveRecord final : public RestoreObj {
  public:
    MoveRecord(SceneNode& node, SceneNode& parent, Replacements replaced)
        : node_(node.shared_from_this()),
          parent_(parent.shared_from_this()),
          index_(parent.Children().Size()),
          replaced_(std::move(replaced)) {}

    void Restore(int isUndo) override {
        if (!isMade_ || !node_->Rehang(parent_, index_)) return;
        isMade_ = false;
        std::for_each(replaced_.rbegin(), replaced_.rend(),
                      [isUndo](auto& record) { record->Restore(isUndo); });
        TellOfChange();
    }

    void Redo() override {
        if (isMade_ || !node_->Rehang(parent_, index_)) return;
        isMade_ = true;
        for (auto& record : replaced_)
            record->Redo();
        TellOfChange();
    }

  private:
    void TellOfChange() {
        if (replaced_.empty() || !node_->GetTMController()) return;
        node_->GetTMController()->NotifyDependents(FOREVER, PART_ALL, REFMSG_CHANGE);
    }

    NodePtr node_;
    NodePtr parent_;     // where the node hangs when the record has been turned
    std::size_t index_;  // there
    Replacements replaced_;
    bool isMade_ = false;
};

void Move(SceneNode& node, SceneNode& parent, Replacements replaced) {
    if (!theHold.Holding()) {
        NodePtr place = parent.shared_from_this();
        std::size_t index = parent.Children().Size();
        node.Rehang(place, index);
        return;
    }
    auto* const record = new MoveRecord(node, parent, std::move(replaced));
    theHold.Put(record);
    record->Redo();
}

struct Parents {
    TimeValue t;
    Matrix3 from;
    Matrix3 to;
    Matrix3 world;
};

bool Adapt(Control& controller, const Parents& parents) {
    return controller.ChangeParents(parents.t, parents.from, parents.to, parents.world) != 0;
}

// The records that put an adapted copy in the controller's place; none if it, or something that it
// refers to, cannot be copied, or if it cannot be adapted.
Replacements Adapted(Control* controller, const Parents& parents, CopyMap& copies) {
    if (!controller) return {};
    auto* const copy = static_cast<Control*>(copies.CloneRef(controller));
    const bool isCopied = copy != controller && copies.IsWhole();
    if (isCopied && Adapt(*copy, parents)) return copies.Replacements();
    copies.Discard();
    return {};
}

// The node stays where it is in the world at `t`. What cannot be adapted so that undo brings it
// back is set anew, which is a record of its own.
void MoveAndKeepWorld(SceneNode& node, SceneNode& parent, TimeValue t) {
    const Parents parents{t, node.Parent()->GetNodeTM(t, nullptr), parent.GetNodeTM(t, nullptr),
                          node.GetNodeTM(t, nullptr)};
    Control* const controller = node.GetTMController();
    const bool isRecorded = theHold.Holding();
    bool isAdapted = false;
    const Graveyard::Pause pause;
    CopyMap copies;
    try {
        Replacements replaced = isRecorded ? Adapted(controller, parents, copies) : Replacements();
        isAdapted = !replaced.empty();
        Move(node, parent, std::move(replaced));
    } catch (...) {
        copies.Discard();
        throw;
    }
    if (!isRecorded) isAdapted = controller && Adapt(*controller, parents);
    if (isAdapted) return;
    const WithoutKeys withoutKeys;
    node.SetNodeTM(t, parents.world);
}

}  // namespace

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
        Move(*this, parent, {});
}

}  // namespace headless
