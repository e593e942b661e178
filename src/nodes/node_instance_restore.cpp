#include "nodes/node_instance_restore.h"

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

void NodeInstanceRestoreObj::ToggleNode() {
    if (!Node()) return;
    TVL::NodeListener* const listener = Node()->Listener();
    present = !present;
    if (present) {
        ListNode(Node());
        if (listener) listener->OnNodeRestored(Node());
    } else {
        if (listener) listener->OnNodeRemoved(Node());
        if (Node()) UnlistNode(Node());
    }
}
