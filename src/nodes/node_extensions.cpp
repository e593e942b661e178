#include <utility>

#include "core_link/core_answer.h"
#include "nodes/max_node.h"
#include "nodes/node_deletion.h"
#include "tvl/ids.h"
#include "tvl/log.h"
#include "undo/own_step.h"

namespace {

// Between its begin and its end a batch gathers selected nodes into one selection, without undo
// steps. There is one for the whole process.
constinit bool selectionBatch = false;

// False: the batch was open already, or cannot be.
bool BeginSelectionBatch() {
    if (std::exchange(selectionBatch, true)) return false;
    const bool begun = TVL::TraceIfThrown("the beginning of a selection",
                                          [] { GetCOREInterface()->ClearNodeSelection(0); });
    if (!begun) selectionBatch = false;
    return begun;
}

}  // namespace

bool CMAXNode::EndSelectionBatch() {
    return std::exchange(selectionBatch, false);
}

void CMAXNode::Select() {
    AnswerCore("Select", [&] {
        INode* const host = HostNode();
        if (!host) return;
        if (selectionBatch) {
            GetCOREInterface()->SelectNode(host, 0);
            return;
        }
        const OwnStep step("Select");
        GetCOREInterface()->SelectNode(host, 1);
    });
}

std::vector<int> CMAXNode::ListExtensions() {
    return AnswerCore("ListExtensions", [&]() -> std::vector<int> {
        return {TVL::kBeginSelection, TVL::kEndSelection, TVL::kStopRecording, TVL::kCloneBelow,
                TVL::kIsSameNode};
    });
}

std::intptr_t CMAXNode::HandleExtension(int id, void* argument) {
    return AnswerCore("HandleExtension", [&]() -> std::intptr_t {
        switch (id) {
            case TVL::kBeginSelection:
                return BeginSelectionBatch();
            case TVL::kEndSelection:
                return EndSelectionBatch();
            case TVL::kStopRecording:
                recordable = false;
                return ConvertToHostController();
            case TVL::kIsSameNode: {
                auto* const other = static_cast<TVL::CoreNode*>(argument);
                return other && other->IsSameNode(this);
            }
            case TVL::kCloneBelow: {
                auto* const parent = static_cast<CMAXNode*>(static_cast<TVL::CoreNode*>(argument));
                TVL::CoreNode* const copy = CloneHostNode(true, parent);
                return reinterpret_cast<std::intptr_t>(copy);
            }
            case TVL::kUseHostController:
                return ConvertToHostController();
            default:
                TVL::Log(TVL::Log::kWarning)
                    .WriteValue("3ds max node: Caught unhandled extension", id);
                return 0;
        }
    });
}

std::intptr_t CMAXNode::ConvertToHostController() {
    if (INode* host = HostNode()) ConvertTransformController(host);
    return 0;
}
