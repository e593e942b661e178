#include "headless/scene/parent_change.h"

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include "headless/control/animate_mode.h"
#include "headless/references/copy_map.h"
#include "headless/references/graveyard.h"
#include "headless/references/reference_record.h"
#include "headless/scene/scene.h"
#include "host/hold.h"

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

}  // namespace

void MoveWithParent(SceneNode& node, SceneNode& parent) {
    Move(node, parent, {});
}

// What cannot be adapted so that undo brings it back is set anew, which is a record of its own.
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

}  // namespace headless
