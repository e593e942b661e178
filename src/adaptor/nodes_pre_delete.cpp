#include <algorithm>
#include <utility>

#include "adaptor/host_events.h"
#include "core_link/core_link.h"
#include "host/node.h"
#include "nodes/max_node.h"
#include "nodes/node_deletion.h"
#include "nodes/node_lookup.h"
#include "tvl/ids.h"

namespace {

// Extension of an owner: its nodes are about to be deleted by the user.

// The announcement in progress. The Core can cause another one from inside it, after which the
// outer one goes on as it was.
class Announcement {
  public:
    explicit Announcement(INodeTab& table)
        : outer_(std::exchange(DeletionInProgress(), DeletionState(table))) {}
    ~Announcement() { DeletionInProgress() = std::move(outer_); }
    Announcement(const Announcement&) = delete;
    Announcement& operator=(const Announcement&) = delete;

  private:
    DeletionState outer_;
};

void TellOwner(const INode* host) {
    const CMAXNode* const node = FindAnnouncedNode(host);
    TVL::CoreElement* const owner = node ? node->Owner() : nullptr;
    if (!owner) return;
    if (!DeletionInProgress().notifiedOwners.insert(owner).second) return;
    const bool isListed = CallCore("HasExtension of an owner", false,
                                   [&] { return owner->HasExtension(TVL::kNodesBeingDeleted); });
    if (!isListed) return;
    CallCore("extension 43 of an owner",
             [&] { owner->HandleExtension(TVL::kNodesBeingDeleted, nullptr); });
}

}  // namespace

// An owner's answer can take nodes out of the host's table, and like `StopCore` it can end nodes
// that stand there.
void OnNodesPreDelete(void*, NotifyInfo* info) {
    if (!AttachedCore()) return;
    if (IsCoreRunning()) {
        if (CoreInterface* const core = AttachedCore())
            CallCore("StopCore", [&] { core->StopCore(); });
    }
    auto* const table = info ? static_cast<INodeTab*>(info->callParam) : nullptr;
    if (!table) return;
    const Announcement announcement(*table);
    for (int left = table->Count(); left > 0; left = std::min(left - 1, table->Count())) {
        TellOwner((*table)[left - 1]);
    }
}
