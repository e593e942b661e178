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
// it, reads `plugin->name`, and asks the two of ElementExtension (tvl/ids.h):
//
//   kNodesBeingDeleted   Nodes of this element are about to be deleted by the user. Told once for
//        each deletion, if the element lists it; it may answer with CoreNode::Delete on its nodes,
//        in an undo group, which becomes part of the user's own step, unless a group of the
//        Core's was open across calls: there was no step of the user's then.
//   kSceneBeingSaved   The scene is being saved, or the user is detaching the Core by the panel and
//        the next one is to find its state; the argument is an XMLNode of kind 1 named
//        "masternodes". The element adds a child "masternode" for each stored part of its state.
//        Asked of every element with nodes in the scene, also if it lists nothing. The parts travel
//        on its first node, and without any none of its nodes is marked as the Core's. An element
//        that cannot give its state throws, and the save is refused.
//
// A stored part, of which the Core is given the TVL_Plugin when the scene has been opened or
// merged. The adaptor reads what is named here; whatever else stands in it comes back as it was:
//
//   <masternode>
//     <TVL_Plugin>
//       <name>Hand</name>          of parts of one name the first in the scene is loaded
//     </TVL_Plugin>
//     <parent>Rig</parent>         name of the part in which it is loaded; empty: at the top
//     <childindex>0</childindex>   its place among the parts in that one, ascending
//   </masternode>
//
// A TVL_Plugin can be packed. It then has the attribute compressed="1" and a text as its only
// child: the base64 (tvl/base64_buffer.h) of what XMLNode::Write makes of the element and a closing
// NUL, compressed (tvl/huffman_buffer.h) or as it is. It is unpacked before the Core gets it.
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
//
// It hears of what the Core does to the node inside an undo group, and of the undo and redo of
// that. What a user deletes is told to the node's owner alone, if that lists kNodesBeingDeleted;
// the listener hears of it when the owner answers with CoreNode::Delete in an undo group of its
// own. Unanswered, the node stays the Core's, with nothing behind it until the user undoes.
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
