#include <algorithm>
#include <bitset>
#include <cstddef>
#include <iterator>
#include <utility>

#include "adaptor/utility_manager.h"
#include "core_link/core_link.h"
#include "core_link/trace_file.h"
#include "host/node.h"
#include "host/notify.h"
#include "nodes/host_node_link.h"
#include "nodes/max_node.h"
#include "nodes/mesh_cache.h"
#include "nodes/node_deletion.h"
#include "nodes/node_list.h"
#include "scene_state/node_tags.h"
#include "scene_state/state_chunk.h"
#include "tvl/ids.h"
#include "undo/undo_groups.h"

namespace {

// The host ends a hold with the scene. The Core works in the scene that goes to the end of its
// call.
void LeaveScene() {
    LeaveStoredState();
    CoreInterface* const core = AttachedCore();
    if (!core) return;
    CallCore("ResetCore", [&] { core->ResetCore(); });
    MarkHold();
    HostNodeLink::LeaveScene();
    ConvertedMeshes().Empty();
    RecordOfState() = {};
}

void OnSceneReset(void*, NotifyInfo*) {
    LeaveScene();
}

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

// Without memory to note it, an owner is told once more rather than not at all.
bool IsNewlyTold(const TVL::CoreElement* owner) {
    bool isNew = true;
    TVL::TraceIfThrown("the announcement of a deletion",
                       [&] { isNew = DeletionInProgress().notifiedOwners.insert(owner).second; });
    return isNew;
}

// A Core that leaves when it is asked takes its owners along, and their nodes.
void TellOwner(const INode* host) {
    const CMAXNode* const node = FindAnnouncedNode(host);
    TVL::CoreElement* const owner = node ? node->Owner() : nullptr;
    if (!owner) return;
    if (!IsNewlyTold(owner)) return;
    const bool isListed = CallCore("HasExtension of an owner", false,
                                   [&] { return owner->HasExtension(TVL::kNodesBeingDeleted); });
    if (!isListed || !OwnsNodes(owner)) return;
    CallCore("extension 43 of an owner",
             [&] { owner->HandleExtension(TVL::kNodesBeingDeleted, nullptr); });
}

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

// A kind other than 0 is a file that does not replace the scene.
void OnFilePreOpen(void*, NotifyInfo* info) {
    const auto* const kind = info ? static_cast<const int*>(info->callParam) : nullptr;
    if (!kind || *kind == 0) LeaveScene();
}

void OnFileLoaded(void*, NotifyInfo*) {
    GatherSceneState();
}

// A notification has no answer. Whatever fails here, the save that follows is refused for it. A
// node that goes while the scene is being saved, or comes back by an undo later, is to bear no tag;
// those of a Core that is leaving keep theirs for the next one.
void OnFilePreSave(void*, NotifyInfo*) {
    if (!AttachedCore()) return;
    RecordOfState().isTagLost = false;
    const bool isStored = TVL::TraceIfThrown("the storing of tags", &StoreSceneState);
    const bool tagsStay = IsCoreLeaving() || !AttachedCore();
    AdaptorNodes().clearHostNode = tagsStay ? nullptr : ClearNodeTag;
    if (!isStored) RecordOfState().isTagLost = true;
}

// In a Core that is leaving the tags stay for the next one.
void OnFilePostSave(void*, NotifyInfo*) {
    if (!AttachedCore()) return;
    RecordOfState().isTagLost = false;
    if (!IsCoreLeaving()) ClearNodeTags();
}

void OnHostShutdown(void* manager, NotifyInfo*) {
    LeaveStoredState();
    static_cast<UtilityManager*>(manager)->ShutDownAdaptor();
}

// A notification has no answer, and the host goes on whatever comes of it.
template <NOTIFYPROC kHandler>
void LetNothingOut(void* manager, NotifyInfo* info) {
    const TraceAfter trace;
    TVL::TraceIfThrown("a notification", [&] { kHandler(manager, info); });
}

struct HostEvent {
    int code;
    NOTIFYPROC handler;
};

// In the order of registration.
constexpr HostEvent kHostEvents[] = {
    {NOTIFY_SEL_NODES_PRE_DELETE, LetNothingOut<OnNodesPreDelete>},
    {NOTIFY_FILE_PRE_OPEN, LetNothingOut<OnFilePreOpen>},
    {NOTIFY_FILE_POST_OPEN, LetNothingOut<OnFileLoaded>},
    {NOTIFY_SYSTEM_PRE_RESET, LetNothingOut<OnSceneReset>},
    {NOTIFY_SYSTEM_PRE_NEW, LetNothingOut<OnSceneReset>},
    {NOTIFY_FILE_PRE_SAVE, LetNothingOut<OnFilePreSave>},
    {NOTIFY_FILE_POST_SAVE, LetNothingOut<OnFilePostSave>},
    {NOTIFY_FILE_POST_MERGE, LetNothingOut<OnFileLoaded>},
    {NOTIFY_SYSTEM_SHUTDOWN, LetNothingOut<OnHostShutdown>},
};

// Those that the host has taken.
constinit std::bitset<std::size(kHostEvents)> registered;

}  // namespace

// What the host tells of its scene. While no Core is attached, every event but the host's shutdown
// passes without effect on the scene; what is kept of a state goes with its scene all the same.
void UtilityManager::RegisterHostEvents() {
    for (std::size_t index = 0; index < std::size(kHostEvents); ++index) {
        const HostEvent& event = kHostEvents[index];
        registered[index] = RegisterNotification(event.handler, this, event.code) != 0;
    }
}

void UtilityManager::UnregisterHostEvents() {
    for (std::size_t index = 0; index < std::size(kHostEvents); ++index) {
        const HostEvent& event = kHostEvents[index];
        if (registered[index]) UnRegisterNotification(event.handler, this, event.code);
    }
    registered.reset();
}
