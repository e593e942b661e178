#include "nodes/node_deletion.h"

#include <memory>
#include <utility>

#include "controllers/conversion.h"
#include "controllers/scalar_control.h"
#include "controllers/transform_control.h"
#include "core_link/core_answer.h"
#include "nodes/max_node.h"
#include "nodes/node_lifetime.h"
#include "nodes/node_list.h"
#include "objects/host_objects.h"
#include "undo/undo_groups.h"

namespace {

void NotePlaces(DeletionState& deletion) {
    const INodeTab& table = *deletion.deletingNodes;
    deletion.places.clear();
    for (int index = 0; index < table.Count(); ++index)
        deletion.places.emplace(table[index], index);
    deletion.placesOf = table.Count();
}

}  // namespace

// An owner asks for each of its nodes; the table can become shorter meanwhile.
bool IsBeingDeletedByHost(INode* hostNode) {
    DeletionState& deletion = DeletionInProgress();
    const INodeTab* const table = deletion.deletingNodes;
    if (!table) return false;
    if (deletion.placesOf != table->Count()) NotePlaces(deletion);
    const auto isAtItsPlace = [&] {
        const auto place = deletion.places.find(hostNode);
        return place != deletion.places.end() && (*table)[place->second] == hostNode;
    };
    if (isAtItsPlace()) return true;
    if (!deletion.places.contains(hostNode)) return false;
    NotePlaces(deletion);
    return isAtItsPlace();
}

void TakeBackHostNode(INode* hostNode) noexcept {
    TVL::TraceIfThrown("DeleteNode", [&] {
        if (hostNode) GetCOREInterface()->DeleteNode(hostNode, 1, 0);
    });
}

void ConvertTransformController(INode* hostNode) {
    if (auto* const own = TransformControl::liveInstances.Find(hostNode->GetTMController()))
        ConvertToPRSController(own);
}

// Each conversion can be a step of its own, which drops undo chunks of the Core's, so that the node
// can be gone behind it.
void RevertControllers(INode* hostNode) {
    const HostNodeLink link(hostNode);
    AnswerCore("Delete", [hostNode] { ConvertTransformController(hostNode); });
    const auto findObject = [&link] {
        INode* const present = link.Get();
        return present ? present->GetObjectRef() : nullptr;
    };
    ForEachParameter(findObject, [](Animatable& parameters, int index) {
        if (auto* const own = ScalarControl::liveInstances.Find(parameters.SubAnim(index)))
            AnswerCore("Delete", [own] { ConvertToScalarController(own); });
    });
}

void CMAXNode::Delete(bool deleteHostNode) {
    AnswerCore("Delete", [&] {
        if (isSnapshot)
            DeleteSnapshotNode(deleteHostNode);
        else
            DeleteReal(deleteHostNode);
    });
}

// Calls out to the host and to the Core can end this node; the record, which has not been given
// away yet, tells.
void CMAXNode::DeleteReal(bool deleteHostNode) {
    if (!IsListed(this)) return;
    auto record = std::make_unique<NodeInstanceRestoreObj>(this, true);
    UnlistNode(this);
    SettleHostSide(deleteHostNode);
    if (!record->Node()) return;
    if (!IsHoldingUndo()) {
        Destroy();
        return;
    }
    record->ToggleNode();
    AddUndoChunk(std::move(record));
}

void CMAXNode::DeleteSnapshotNode(bool deleteHostNode) {
    if (!MayDeleteThroughSource()) return;
    const NodeWatch alive(this);
    SettleHostSide(deleteHostNode);
    if (alive.Get()) Destroy();
}

// A node of one owner can be deleted through a snapshot node only if that was reached from a node
// of the same owner. A source that is gone counts with the owner that it had when it led here.
bool CMAXNode::MayDeleteThroughSource() const {
    const TVL::CoreElement* const reachedBy =
        source ? static_cast<const CMAXNode*>(source)->owner : sourceOwner;
    return !owner || owner == reachedBy;
}

// The Core has done with the node, which ends also where the host fails at its side of it.
void CMAXNode::SettleHostSide(bool deleteHostNode) {
    AnswerCore("Delete", [&] {
        INode* const host = HostNode();
        if (!host) return;
        if (!deleteHostNode)
            RevertControllers(host);
        else if (!IsBeingDeletedByHost(host))
            GetCOREInterface()->DeleteNode(host, 1, 0);
    });
}
