#include "nodes/node_lifetime.h"

#include "core_link/core_link.h"
#include "nodes/max_node.h"
#include "nodes/mesh_cache.h"
#include "nodes/node_list.h"

NodeWatch::NodeWatch(CMAXNode* watched) : node_(watched) {
    if (node_) node_->watches.push_back(this);
}

NodeWatch::~NodeWatch() {
    if (node_) std::erase(node_->watches, this);
}

NodeInstanceRestoreObj::~NodeInstanceRestoreObj() {
    if (!present && Node()) Node()->Destroy();
}

void TellRestored(CMAXNode& node) {
    TVL::NodeListener* const listener = node.Listener();
    if (listener) CallCore("OnNodeRestored", [&] { listener->OnNodeRestored(&node); });
}

void TellRemoved(CMAXNode& node) {
    TVL::NodeListener* const listener = node.Listener();
    if (listener) CallCore("OnNodeRemoved", [&] { listener->OnNodeRemoved(&node); });
}

void NodeInstanceRestoreObj::ToggleNode() {
    if (!Node()) return;
    present = !present;
    if (present) {
        ListNode(Node());
        TellRestored(*Node());
    } else {
        TellRemoved(*Node());
        if (Node()) UnlistNode(Node());
    }
}

SweptNodes SweepNodes() {
    SweptNodes swept;
    CMAXNode::liveInstances.ForEachFromLast([&](CMAXNode& node) {
        const bool isOfThisCore = node.ForgetCore();
        if (node.IsSnapshot()) {
            if (isOfThisCore) ++swept.snapshotNodes;
        } else {
            ++(IsListed(&node) ? swept.realNodes : swept.recordedNodes);
            node.Destroy();
        }
    });
    CMAXNode::EndSelectionBatch();
    ConvertedMeshes().Empty();
    swept.snapshots = OrphanedSnapshot::FreeAll();
    return swept;
}
