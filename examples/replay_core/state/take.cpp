#include "replay_core/state/take.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <set>
#include <utility>

#include "replay_core/state/stored_state.h"
#include "replay_core/state/takes.h"
#include "tvl/ids.h"
#include "tvl/undo.h"

namespace replay {

namespace {

// Holds what the take is to know after it is redone, and from then on what it knew before.
template <class Known>
class Change final : public TVL::CUndo {
  public:
    Change(Known& known, Known after) : known_(known), other_(std::move(after)) {}

    void Undo(bool) override { std::swap(known_, other_); }
    void Redo() override { std::swap(known_, other_); }

  private:
    Known& known_;
    Known other_;
};

template <class Known>
void Undoably(TVL::AdaptorInterface& adaptor, Known& known, Known after) {
    auto change = std::make_unique<Change<Known>>(known, std::move(after));
    change->Redo();
    adaptor.AddUndoChunk(change.release());
}

}  // namespace

Take::Take(TVL::AdaptorInterface& adaptor, const Takes& all, std::string name)
    : adaptor_(adaptor), all_(all), record_{std::move(name)} {
    plugin = &record_;
}

void Take::Note(Recording recording) {
    std::vector<Recording> recordings = recordings_;
    std::erase(recordings, recording);
    recordings.push_back(std::move(recording));
    Undoably(adaptor_, recordings_, std::move(recordings));
}

void Take::StartAnew() {
    Undoably(adaptor_, rest_, {});
    Undoably(adaptor_, recordings_, {});
    DeleteNodes();
}

std::vector<StoredNode> Take::Missing() const {
    std::set<std::string> names;
    for (const TVL::CNode* node : book_.Nodes())
        names.insert(node->GetNodeName());
    std::vector<StoredNode> missing;
    std::ranges::copy_if(rest_.missingNodes, std::back_inserter(missing),
                         [&](const StoredNode& node) { return !names.contains(node.name); });
    return missing;
}

void Take::SetRecordings(std::vector<Recording> recordings) {
    recordings_ = std::move(recordings);
}

std::vector<int> Take::ListExtensions() {
    return {TVL::kNodesBeingDeleted, TVL::kSceneBeingSaved};
}

std::intptr_t Take::HandleExtension(int id, void* argument) {
    switch (id) {
        case TVL::kNodesBeingDeleted:
            DeleteNodes();
            return 0;
        case TVL::kSceneBeingSaved:
            if (argument) static_cast<XMLNode*>(argument)->AddChild(MasterNode(*this, all_));
            return 0;
        default:
            return CoreElement::HandleExtension(id, argument);
    }
}

// Children go before their parents, so that the host has no child to hang elsewhere meanwhile. The
// book is asked again for each node, because the deletion of one can take others along.
void Take::DeleteNodes() {
    const std::vector<TVL::CoreNode*> newestFirst(book_.Nodes().rbegin(), book_.Nodes().rend());
    adaptor_.BeginUndoGroup("Delete " + Name());
    for (TVL::CoreNode* node : newestFirst) {
        if (!book_.Has(node)) continue;
        node->Delete(true);
        book_.OnNodeRemoved(node);  // unless the adaptor has said so, as it does within a group
    }
    adaptor_.EndUndoGroup();
}

void Take::Drop() {
    while (!book_.Nodes().empty()) {
        TVL::CoreNode* const node = book_.Nodes().back();
        book_.OnNodeRemoved(node);
        node->Destroy();
    }
    recordings_.clear();
    parent_ = nullptr;
    rest_ = {};
}

}  // namespace replay
