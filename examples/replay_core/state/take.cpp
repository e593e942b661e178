#include "replay_core/state/take.h"

#include <utility>

#include "replay_core/state/guarded.h"

namespace replay {
namespace {

constexpr int kNodesAboutToBeDeleted = 43;

// Every node that an adaptor gives out is one.
TVL::CoreNode* AsCoreNode(TVL::CNode* node) {
    return static_cast<TVL::CoreNode*>(node);
}

}  // namespace

Take::Take(TVL::AdaptorInterface& adaptor, std::string name)
    : adaptor_(adaptor), record_{std::move(name)} {
    plugin = &record_;
}

std::vector<int> Take::ListExtensions() {
    return {kNodesAboutToBeDeleted};
}

std::intptr_t Take::HandleExtension(int id, void* argument) {
    if (id != kNodesAboutToBeDeleted) return CoreElement::HandleExtension(id, argument);
    Guarded([this] { DeleteNodes(); });
    return 0;
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

void Take::DropNodes() {
    while (!book_.Nodes().empty()) {
        TVL::CNode* const node = book_.Nodes().back();
        book_.OnNodeRemoved(node);
        AsCoreNode(node)->Destroy();
    }
}

Take& Takes::Named(std::string_view name) {
    for (const std::unique_ptr<Take>& take : takes_)
        if (take->Name() == name) return *take;
    takes_.push_back(std::make_unique<Take>(adaptor_, std::string(name)));
    return *takes_.back();
}

void Takes::DropNodes() {
    for (const std::unique_ptr<Take>& take : takes_)
        take->DropNodes();
}

}  // namespace replay
