#include "nodes/node_selection.h"

#include <utility>

#include "core_link/core_answer.h"
#include "nodes/max_node.h"
#include "undo/own_step.h"

namespace {

bool selectionBatch = false;

}  // namespace

bool BeginSelectionBatch() {
    if (std::exchange(selectionBatch, true)) return false;
    GetCOREInterface()->ClearNodeSelection(0);
    return true;
}

bool EndSelectionBatch() {
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
