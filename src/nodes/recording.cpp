#include "nodes/recording.h"

#include <memory>
#include <unordered_set>

#include "host/animate.h"
#include "host/interface.h"
#include "measures/host_clock.h"
#include "nodes/max_node.h"
#include "nodes/mesh_cache.h"
#include "nodes/node_list.h"
#include "tvl/snapshot.h"
#include "undo/set_time_restore.h"
#include "undo/undo_groups.h"

namespace {

void OpenRecording() {
    GetCOREInterface()->EnableAnimateButton(0);
    RecordingState& recording = RecordingInProgress();
    if (recording.depth++ == 0) recording.wasAnimating = Animating();
    AnimateOn();
    AddUndoChunk(std::make_unique<CSetTimeRestoreObj>(CurrentSeconds()));
    ConvertedMeshes().Empty();
}

// What is written in animate mode becomes a key, even if it is what was there.
void KeyPresentPose(CMAXNode& node) {
    TVL::CSnapshot* const snapshot = node.AcquireSnapshot(CurrentSeconds());
    if (!snapshot) return;
    snapshot->SetWorldTransform(snapshot->GetWorldTransform());
    node.ReleaseSnapshot(snapshot);
}

}  // namespace

std::int32_t BeginRecording(const std::vector<TVL::CoreElement*>& owners) {
    OpenRecording();
    const std::unordered_set<const TVL::CoreElement*> meant(owners.begin(), owners.end());
    ForEachListedNode([&](CMAXNode& node) {
        if (meant.contains(node.Owner()) && node.IsRecordable()) KeyPresentPose(node);
    });
    return 0;
}

std::int32_t BeginRecordingUnkeyed() {
    OpenRecording();
    return 0;
}

std::int32_t EndRecording() {
    RecordingState& recording = RecordingInProgress();
    if (recording.depth > 0) --recording.depth;
    if (recording.depth == 0 && !recording.wasAnimating) AnimateOff();
    GetCOREInterface()->EnableAnimateButton(1);
    ConvertedMeshes().Empty();
    return 0;
}
