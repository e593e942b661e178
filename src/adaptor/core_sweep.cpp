#include <optional>
#include <utility>

#include "adaptor/max_adaptor_interface.h"
#include "adaptor/utility_manager.h"
#include "core_link/core_link.h"
#include "core_link/trace_file.h"
#include "host/interface.h"
#include "nodes/node_lifetime.h"
#include "nodes/node_list.h"
#include "scene_state/tagged_nodes.h"
#include "tvl/error_code.h"
#include "tvl/log.h"
#include "undo/undo_wrapper.h"

namespace {

// The scope opens with the first thing that was left.
class LeftBehind {
  public:
    void Tell(const char* what, int count) {
        if (count == 0) return;
        if (!scope_) scope_.emplace("CORE left something behind in the adaptor", kLevel);
        scope_->WriteValue(what, count);
    }

    void Tell(const SweptNodes& nodes) {
        Tell("nodes", nodes.realNodes);
        Tell("nodes in undo records", nodes.recordedNodes);
        Tell("snapshot nodes", nodes.snapshotNodes);
        Tell("snapshots", nodes.snapshots);
    }

  private:
    static constexpr std::int32_t kLevel = TVL::Log::kWarning;
    std::optional<TVL::Log> scope_;
};

// The log that was left may be gone already, so its text is not read any more.
bool TakeLogOut(TVL::AdaptorInterface& adaptor) {
    if (!TVL::Log::external) return false;
    adaptor.AdaptorInterface::ClearLog();
    RestartTrace();
    return true;
}

bool TakeErrorCodesOut(TVL::AdaptorInterface& adaptor) {
    if (!TVL::ErrorCode::external) return false;
    adaptor.ClearErrorCode();
    return true;
}

// A node of the Core's class may refuse, and its refusal would leave a pointer to it.
int CutMessageLinks(TVL::Util::MessageNode& node) {
    int cut = 0;
    // Either may have gone while another one took its leave.
    for (std::int32_t index = node.GetListeningCount(); index-- > 0;) {
        TVL::Util::MessageNode* const source = node.GetListeningTo(index);
        if (!source) continue;
        node.StopListening(source);
        ++cut;
    }
    for (std::int32_t index = node.GetListenerCount(); index-- > 0;) {
        TVL::Util::MessageNode* const listener = node.GetListener(index);
        if (!listener) continue;
        CallCore("StopListening", [&] { listener->MessageNode::StopListening(&node); });
        ++cut;
    }
    return cut;
}

int EndLeftRecordings() {
    int left = 0;
    for (; RecordingInProgress().depth > 0; ++left)
        EndRecording();
    return left;
}

bool TakeFocusBack(FocusState& focus) {
    const bool isOut = std::exchange(focus.focusCount, 0) > 0;
    if (isOut) GetCOREInterface()->EnableAccelerators();
    return isOut;
}

}  // namespace

// A Core that is called need not have met the adaptor, and one that is called may destroy it.
CoreBrackets BracketsSoFar() {
    const MaxAdaptorInterface* const adaptor = MaxAdaptorInterface::instance;
    if (!adaptor) return {};
    return {adaptor->recording.depth, adaptor->focus.focusCount, adaptor->undo.nest};
}

void EndBracketsSince(const CoreBrackets& before) {
    if (!MaxAdaptorInterface::instance) return;
    while (RecordingInProgress().depth > before.recordings)
        EndRecording();
    CancelHoldBegunSince(before.nests);
    ++AdaptorNodes().arrivals;
    MaxAdaptorInterface& adaptor = *MaxAdaptorInterface::GetInstance();
    for (int left = adaptor.focus.focusCount - before.focus; left > 0; --left)
        adaptor.RestoreFocus();
}

void UtilityManager::SweepCore(std::uint32_t nests) {
    MaxAdaptorInterface& adaptor = *MaxAdaptorInterface::GetInstance();

    // First of all, since everything below may write or declare.
    const bool hadLog = TakeLogOut(adaptor);
    const bool hadErrorCodes = TakeErrorCodesOut(adaptor);

    // Whoever is told of it can still open and make what is taken down below.
    const int links = CutMessageLinks(adaptor);
    AbandonGatherings();
    RecordOfState() = {};
    AdaptorNodes().clearHostNode = nullptr;

    // Listeners go before the hold ends: what is cancelled would tell them.
    const int chunks = ReleaseCoreChunks();
    const SweptNodes nodes = SweepNodes();
    const int recordings = EndLeftRecordings();
    CancelHoldBegunSince(nests);
    const int groups = CloseLeftUndoGroups();
    const bool hadFocus = TakeFocusBack(adaptor.focus);

    LeftBehind left;
    left.Tell("log", hadLog);
    left.Tell("error registry", hadErrorCodes);
    left.Tell("undo chunks", chunks);
    left.Tell(nodes);
    left.Tell("recording", recordings);
    left.Tell("undo groups", groups);
    left.Tell("message links", links);
    left.Tell("keyboard focus", hadFocus);
}
