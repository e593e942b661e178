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
    return {kBeginSelection, kEndSelection, kStopRecording, kCloneBelow, kIsSameNode};
}

std::intptr_t CMAXNode::HandleExtension(int id, void* argument) {
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
        case kCloneBelow:
            return CloneBelow(static_cast<TVL::CoreNode*>(argument));
        case kConvertController:
            return ConvertToHostController();
        default:
            TVL::Log(TVL::Log::kWarning).WriteValue("3ds max node: Caught unhandled extension", id);
            return 0;
    }
}

std::intptr_t CMAXNode::CloneBelow(TVL::CoreNode* parent) {
    CMAXNode* const copy = CloneHostNode(true);
    INode* const parentHost = parent ? static_cast<CMAXNode*>(parent)->HostNode() : nullptr;
    if (copy && parentHost) parentHost->AttachChild(copy->HostNode(), 0);
    return reinterpret_cast<std::intptr_t>(static_cast<TVL::CoreNode*>(copy));
}

std::intptr_t CMAXNode::ConvertToHostController() {
    if (INode* host = HostNode()) ConvertTransformController(host);
    return 0;
}
