#pragma once

#include <string>

#include "tvl/extendable.h"

namespace TVL {

class CNode;

// The Core's record of one of its plug-ins, of which the adaptor reads the name: it prefixes the
// host names of created nodes and stands in stored state.
struct PluginRecord {
    std::string name;
};

// An element of the Core that owns nodes. The adaptor keeps the pointer with each node, compares
// it, reads `plugin->name`, and asks these extensions where the element lists them:
//
//   43   argument null: nodes of this element are about to be deleted by the user. Told once for
//        each deletion; the element may answer with CoreNode::Delete on its nodes.
//   56   argument an XMLNode of kind 1 named "masternodes": the scene is being saved; the element
//        adds a child "masternode" for each stored part of its state.
//
// An element outlives every node that names it as its owner.
class CoreElement : public CExtendable {
  public:
    PluginRecord* plugin = nullptr;  // never null while nodes are created; not owned; first member
                                     // by contract

  protected:
    CoreElement() = default;
    ~CoreElement() = default;
};

// What the Core learns of a node it gave a listener for. Not owned by the node; it outlives it, or
// the node's undo records. The order of the virtual operations is part of the contract.
class NodeListener {
  public:
    virtual ~NodeListener() = default;

    // The node is leaving the scene: deleted, or its creation undone. It still answers, though
    // nothing may be behind it any more in the host.
    virtual void OnNodeRemoved(CNode* node) = 0;

    // The node has come: created inside an undo group, its creation redone, or its deletion undone.
    // When a deletion is undone the host's own node follows later in the same undo.
    virtual void OnNodeRestored(CNode* node) = 0;
};

}  // namespace TVL
