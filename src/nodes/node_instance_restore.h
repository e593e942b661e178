#pragma once

#include "nodes/node_watch.h"
#include "tvl/undo.h"

// Tells the listener, which may end the node, that it has come, or that it goes.
void TellRestored(CMAXNode& node);
void TellRemoved(CMAXNode& node);

// The undo record that takes a real node out of the adaptor's list and puts it back, telling the
// node's listener. While the node is out it belongs to the record. A record whose node has died, or
// has become a snapshot node, is empty and does nothing.
// The order of the fields is part of the contract.
class NodeInstanceRestoreObj final : public TVL::CUndo {
  public:
    NodeInstanceRestoreObj(CMAXNode* recorded, bool isPresent);
    ~NodeInstanceRestoreObj() override;

    // Undo and redo are one and the same flip.
    void Undo(bool isUndo) override;
    void Redo() override;

    // Flips `present`. A node that comes is listed, then its listener told; of a node that goes the
    // listener is told first. The listener may end the node meanwhile.
    void ToggleNode();

    CMAXNode* Node() const { return node.Get(); }  // null: the record is empty

  private:
    bool present;    // the node is listed
    NodeWatch node;  // owned while it is not present
};
