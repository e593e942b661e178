#include "core_link/core_answer.h"
#include "nodes/max_node.h"
#include "nodes/node_deletion.h"
#include "nodes/node_selection.h"
#include "tvl/log.h"

namespace {

constexpr int kBeginSelection = 10;
constexpr int kEndSelection = 11;
constexpr int kStopRecording = 17;
constexpr int kIsSameNode = 31;
constexpr int kCloneBelow = 37;
constexpr int kConvertController = 57;

}  // namespace

std::vector<int> CMAXNode::ListExtensions() {
    return AnswerCore("ListExtensions", [&]() -> std::vector<int> {
        return {kBeginSelection, kEndSelection, kStopRecording, kCloneBelow, kIsSameNode};
    });
}

std::intptr_t CMAXNode::HandleExtension(int id, void* argument) {
    return AnswerCore("HandleExtension", [&]() -> std::intptr_t {
        switch (id) {
            case kBeginSelection:
                return BeginSelectionBatch();
            case kEndSelection:
                return EndSelectionBatch();
            case kStopRecording:
                recordable = false;
                return ConvertToHostController();
            case kIsSameNode: {
                auto* const other = static_cast<TVL::CoreNode*>(argument);
                return other && other->IsSameNode(this);
            }
            case kCloneBelow: {
                auto* const parent = static_cast<CMAXNode*>(static_cast<TVL::CoreNode*>(argument));
                TVL::CoreNode* const copy = CloneHostNode(true, parent);
                return reinterpret_cast<std::intptr_t>(copy);
            }
            case kConvertController:
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
