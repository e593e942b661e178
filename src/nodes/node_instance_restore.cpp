#include "nodes/node_instance_restore.h"

#include "core_link/core_link.h"
#include "nodes/max_node.h"
#include "nodes/node_list.h"

NodeInstanceRestoreObj::NodeInstanceRestoreObj(CMAXNode* recorded, bool isPresent)
    : present(isPresent), node(recorded) {}

NodeInstanceRestoreObj::~NodeInstanceRestoreObj() {
    if (!present && Node()) Node()->Destroy();
}

void NodeInstanceRestoreObj::Undo(bool) {
    ToggleNode();
}

void NodeInstanceRestoreObj::Redo() {
    Undo(true);
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
