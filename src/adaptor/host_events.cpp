#include "adaptor/host_events.h"

#include "adaptor/utility_manager.h"
#include "nodes/mesh_cache.h"
#include "persistence/scene/gather_state.h"
#include "persistence/scene/node_tags.h"
#include "persistence/scene/state_chunk.h"
#include "undo/undo_groups.h"

namespace {

// The host ends a hold with the scene. A mesh from the scene that goes is good for no node of the
// next, whose handle and address can be the same.
void LeaveScene() {
    LeaveStoredState();
    CoreInterface* const core = AttachedCore();
    if (!core) return;
    core->ResetCore();
    MarkHold();
    ConvertedMeshes().Empty();
}

void OnSceneReset(void*, NotifyInfo*) {
    LeaveScene();
}

// A kind other than 0 is a file that does not replace the scene.
void OnFilePreOpen(void*, NotifyInfo* info) {
    const auto* const kind = info ? static_cast<const int*>(info->callParam) : nullptr;
    if (!kind || *kind == 0) LeaveScene();
}

void OnFileLoaded(void*, NotifyInfo*) {
    if (AttachedCore()) GatherSceneState();
}

void OnFilePreSave(void*, NotifyInfo*) {
    if (AttachedCore()) StoreSceneState();
}

void OnFilePostSave(void*, NotifyInfo*) {
    if (AttachedCore()) ClearNodeTags();
}

void OnHostShutdown(void* manager, NotifyInfo*) {
    LeaveStoredState();
    static_cast<UtilityManager*>(manager)->ShutDownAdaptor();
}

struct HostEvent {
    int code;
    NOTIFYPROC handler;
};

// In the order of registration.
constexpr HostEvent kHostEvents[] = {
    {NOTIFY_SEL_NODES_PRE_DELETE, OnNodesPreDelete}, {NOTIFY_FILE_PRE_OPEN, OnFilePreOpen},
    {NOTIFY_FILE_POST_OPEN, OnFileLoaded},           {NOTIFY_SYSTEM_PRE_RESET, OnSceneReset},
    {NOTIFY_SYSTEM_PRE_NEW, OnSceneReset},           {NOTIFY_FILE_PRE_SAVE, OnFilePreSave},
    {NOTIFY_FILE_POST_SAVE, OnFilePostSave},         {NOTIFY_FILE_POST_MERGE, OnFileLoaded},
    {NOTIFY_SYSTEM_SHUTDOWN, OnHostShutdown},
};

}  // namespace

void RegisterHostEvents(UtilityManager& manager) {
    for (const HostEvent& event : kHostEvents) {
        RegisterNotification(event.handler, &manager, event.code);
    }
}

void UnregisterHostEvents(UtilityManager& manager) {
    for (const HostEvent& event : kHostEvents) {
        UnRegisterNotification(event.handler, &manager, event.code);
    }
}
