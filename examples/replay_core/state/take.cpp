#include "replay_core/state/take.h"

#include <memory>
#include <utility>

#include "replay_core/state/guarded.h"
#include "replay_core/state/stored_state.h"
#include "replay_core/state/takes.h"
#include "tvl/undo.h"

namespace replay {

// Holds what the take knew before, and after an undo what it knew since.
class RecordingsChange final : public TVL::CUndo {
  public:
    RecordingsChange(Take& take, std::vector<Recording> before)
        : take_(take), other_(std::move(before)) {}

    void Undo(bool) override { take_.recordings_.swap(other_); }
    void Redo() override { take_.recordings_.swap(other_); }

  private:
    Take& take_;
    std::vector<Recording> other_;
};

namespace {

constexpr int kNodesAboutToBeDeleted = 43;
constexpr int kSceneIsBeingSaved = 56;

// Every node that an adaptor gives out is one.
TVL::CoreNode* AsCoreNode(TVL::CNode* node) {
    return static_cast<TVL::CoreNode*>(node);
}

}  // namespace

Take::Take(TVL::AdaptorInterface& adaptor, const Takes& all, std::string name)
    : adaptor_(adaptor), all_(all), record_{std::move(name)} {
    plugin = &record_;
}

void Take::Note(Recording recording) {
    auto change = std::make_unique<RecordingsChange>(*this, recordings_);
    std::erase(recordings_, recording);
    recordings_.push_back(std::move(recording));
    adaptor_.AddUndoChunk(change.release());
}

void Take::SetRecordings(std::vector<Recording> recordings) {
    recordings_ = std::move(recordings);
}

std::vector<int> Take::ListExtensions() {
    return {kNodesAboutToBeDeleted, kSceneIsBeingSaved};
}

std::intptr_t Take::HandleExtension(int id, void* argument) {
    switch (id) {
        case kNodesAboutToBeDeleted:
            Guarded([this] { DeleteNodes(); });
            return 0;
        case kSceneIsBeingSaved:
            Guarded([&] {
                if (argument) static_cast<XMLNode*>(argument)->AddChild(MasterNode(*this, all_));
            });
            return 0;
        default:
            return CoreElement::HandleExtension(id, argument);
    }
}

// Children go before their parents, so that the host has no child to hang elsewhere meanwhile. The
// book is asked again for each node, because the deletion of one can take others along.
void Take::DeleteNodes() {
    const std::vector<TVL::CNode*> newestFirst(book_.Nodes().rbegin(), book_.Nodes().rend());
    adaptor_.BeginUndoGroup("Delete " + Name());
    for (TVL::CNode* node : newestFirst) {
        if (!book_.Has(node)) continue;
        AsCoreNode(node)->Delete(true);
        book_.OnNodeRemoved(node);  // unless the adaptor has said so, as it does within a group
    }
    adaptor_.EndUndoGroup();
}

void Take::Drop() {
    while (!book_.Nodes().empty()) {
        TVL::CNode* const node = book_.Nodes().back();
        book_.OnNodeRemoved(node);
        AsCoreNode(node)->Destroy();
    }
    recordings_.clear();
    parent_ = nullptr;
    rest_ = {};
}

}  // namespace replay
