#pragma once

#include "tvl/undo.h"

class CMAXNode;

// A pointer to a node that reads as null once the node has died, or has become a snapshot node.
class NodeWatch {
  public:
    explicit NodeWatch(CMAXNode* watched);
    ~NodeWatch();
    NodeWatch(const NodeWatch&) = delete;
    NodeWatch& operator=(const NodeWatch&) = delete;

    CMAXNode* Get() const { return node_; }

  private:
    friend class CMAXNode;
    CMAXNode* node_;
};

// Tells the listener, which may end the node, that it has come, or that it goes.
void TellRestored(CMAXNode& node);
void TellRemoved(CMAXNode& node);

// The undo record that takes a real node out of the adaptor's list and puts it back, telling the
// node's listener. While the node is out it belongs to the record. A record whose node has died, or
// has become a snapshot node, is empty and does nothing.
// The order of the fields is part of the contract.
class NodeInstanceRestoreObj final : public TVL::CUndo {
  public:
    NodeInstanceRestoreObj(CMAXNode* recorded, bool isPresent)
        : present(isPresent), node(recorded) {}
    ~NodeInstanceRestoreObj() override;

    // Undo and redo are one and the same flip.
    void Undo(bool) override { ToggleNode(); }
    void Redo() override { Undo(true); }

    // Flips `present`. A node that comes is listed, then its listener told; of a node that goes the
    // listener is told first. The listener may end the node meanwhile.
    void ToggleNode();

    CMAXNode* Node() const { return node.Get(); }  // null: the record is empty

  private:
    bool present;    // the node is listed
    NodeWatch node;  // owned while it is not present
};

// What a Core left behind when it was detached.
struct SweptNodes {
    int realNodes = 0;      // listed nodes, destroyed
    int recordedNodes = 0;  // nodes that undo records held, destroyed; their records are empty now
    int snapshotNodes = 0;  // not given back since the last sweep; know no owner or listener now
    int snapshots = 0;      // outlived their node, freed
};

// To be called when a Core has left: from here on nothing calls its listeners and owners, neither
// through nodes nor through undo and redo, and a Core that comes later finds every scene node free
// to be claimed. Nothing of the Core's is called meanwhile, so its library may be gone already.
SweptNodes SweepNodes();
