#include "replay_core/state/take.h"

#include <memory>
#include <utility>

#include "replay_core/state/guarded.h"
#include "replay_core/state/stored_state.h"
#include "replay_core/state/takes.h"
#include "tvl/undo.h"

namespace replay {

// Holds what the take is to know after it is redone, and from then on what it knew before.
class RecordingsChange final : public TVL::CUndo {
  public:
    RecordingsChange(Take& take, std::vector<Recording> after)
        : take_(take), other_(std::move(after)) {}

    void Undo(bool) override { take_.recordings_.swap(other_); }
    void Redo() override { take_.recordings_.swap(other_); }

  private:
    Take& take_;
    std::vector<Recording> other_;
};

namespace {

constexpr int kNodesAboutToBeDeleted = 43;
constexpr int kSceneIsBeingSaved = 56;

}  // namespace

Take::Take(TVL::AdaptorInterface& adaptor, const Takes& all, std::string name)
    : adaptor_(adaptor), all_(all), record_{std::move(name)} {
    plugin = &record_;
}

void Take::Note(Recording recording) {
    std::vector<Recording> recordings = recordings_;
    std::erase(recordings, recording);
    recordings.push_back(std::move(recording));
    auto change = std::make_unique<RecordingsChange>(*this, std::move(recordings));
    change->Redo();
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
            LogFault(Guarded([this] { DeleteNodes(); }));
            return 0;
        case kSceneIsBeingSaved:
            LogFault(Guarded([&] {
                if (argument) static_cast<XMLNode*>(argument)->AddChild(MasterNode(*this, all_));
            }));
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
