#include "nodes/recording.h"

#include <cmath>
#include <limits>
#include <memory>
#include <unordered_set>

#include "core_link/core_answer.h"
#include "host/animate.h"
#include "host/interface.h"
#include "measures/host_clock.h"
#include "nodes/max_node.h"
#include "nodes/mesh_cache.h"
#include "nodes/node_list.h"
#include "nodes/snapshots.h"
#include "undo/undo_groups.h"
#include "undo/undo_wrapper.h"

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
    const auto release = [&](CMAXNode::CMAXSnapshot* lent) { node.ReleaseSnapshot(lent); };
    const std::unique_ptr<CMAXNode::CMAXSnapshot, decltype(release)> snapshot(
        node.LendSnapshot(CurrentSeconds()), release);
    if (snapshot) snapshot->PutWorld(snapshot->World());
}

// A recording that does not come up whole is ended again; inside another one it leaves that alone.
template <class Begin>
std::int32_t BeginWhole(Begin begin) {
    const int before = RecordingInProgress().depth;
    try {
        begin();
    } catch (...) {
        RecordingState& recording = RecordingInProgress();
        if (recording.depth > before) before > 0 ? recording.depth = before : EndRecording();
        throw;
    }
    return 0;
}

// A part before its own parts.
void DeleteTimeOfAll(Animatable* top, Interval range, std::uint32_t flags) {
    std::vector<Animatable*> pending{top};
    while (!pending.empty()) {
        Animatable* const part = pending.back();
        pending.pop_back();
        part->DeleteTime(range, flags);
        for (int index = part->NumSubs(); index-- > 0;)
            if (Animatable* sub = part->SubAnim(index)) pending.push_back(sub);
    }
}

}  // namespace

std::int32_t BeginRecording(const std::vector<TVL::CoreElement*>& owners) {
    const std::unordered_set<const TVL::CoreElement*> meant(owners.begin(), owners.end());
    return BeginWhole([&] {
        OpenRecording();
        ForEachListedNode([&](CMAXNode& node) {
            if (meant.contains(node.Owner()) && node.IsRecordable()) KeyPresentPose(node);
        });
    });
}

std::int32_t BeginRecordingUnkeyed() {
    return BeginWhole(&OpenRecording);
}

std::int32_t EndRecording() {
    RecordingState& recording = RecordingInProgress();
    if (recording.depth > 0) --recording.depth;
    if (recording.depth == 0 && !recording.wasAnimating) AnimateOff();
    GetCOREInterface()->EnableAnimateButton(1);
    ConvertedMeshes().Empty();
    return 0;
}

void CMAXNode::DeleteAnimationFrom(double seconds) {
    AnswerCore("DeleteAnimationFrom", [&] {
        INode* const host = HostNode();
        if (!recordable || !host || std::isnan(seconds)) return;
        // The left end is out, so that a key exactly there stays.
        const Interval later(SnapshotTicks(seconds), std::numeric_limits<TimeValue>::max());
        DeleteTimeOfAll(host, later, TIME_INCRIGHT);
        if (Object* object = host->GetObjectRef()) DeleteTimeOfAll(object, later, TIME_INCRIGHT);
    });
}
