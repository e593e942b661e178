#pragma once

#include <string>
#include <vector>

#include "tvl/core_element.h"
#include "tvl/extendable.h"
#include "tvl/snapshot.h"

namespace TVL {

// A node stands for one scene node of the host. Real nodes belong to an element of the Core and are
// kept by the adaptor until Delete; snapshot nodes are handles made on the fly, owned by whoever
// receives one, and given back with ReleaseNode or Destroy. Every node that an adaptor gives out is
// a CoreNode, so a Core may cast down statically.
//
// Its extensions are those of NodeExtension (tvl/ids.h). The order of the virtual operations is
// part of the contract.
class CNode : public CExtendable {
  public:
    virtual void Show() = 0;
    virtual void Hide() = 0;
    virtual bool IsVisible() = 0;

    // Replaces the host's selection by this node, as an undo step "Select" unless one is open; in a
    // batch (NodeExtension) adds it.
    virtual void Select() = 0;

    virtual bool IsSnapshot() = 0;

    // New snapshot nodes, the receiver's to release; null where there is none.
    virtual CNode* GetParent() = 0;
    virtual int GetChildCount() = 0;
    virtual CNode* GetChild(int index) = 0;

    // Gives back a snapshot node; null is ignored.
    virtual void ReleaseNode(CNode* node) = 0;

    virtual ~CNode() = default;

    // The name by which the Core knows the node. The host shows another: see CoreNode::GetName.
    std::string GetNodeName() const { return name; }

    // Who hears of the node from here on; may be null. A node that is made is given its listener
    // then, one that is claimed has none.
    void SetListener(NodeListener* newListener) { listener = newListener; }

  protected:
    std::string name;
    NodeListener* listener = nullptr;  // the Core's, may be null
};

// What a node offers beyond that to the Core that owns it. Times are seconds.
class CoreNode : public CNode {
  public:
    class Snapshot;
    class Snapshot_Helper;
    class Snapshot_Lens;
    class Snapshot_Mesh;
    class Snapshot_Shape;

    // Destroys this object; the host's node stays.
    virtual void Destroy() = 0;

    // Makes a real node for this snapshot node's scene node, to be kept by the adaptor; null if
    // this node is real, or the scene node has a real node already. The snapshot node is still the
    // caller's to release.
    virtual CoreNode* Claim(CoreElement* newOwner, std::string newName) = 0;

    // Turns a real node into a snapshot node without owner, from now on the caller's.
    virtual void Unclaim() = 0;

    // Lend a snapshot, or null for a node that is not of the kind or is gone in the host. Warm
    // pools allocate nothing.
    virtual CSnapshot* AcquireSnapshot(double seconds) = 0;
    virtual CSnapshot_Helper* AcquireHelperSnapshot() = 0;
    virtual CSnapshot_Mesh* AcquireMeshSnapshot(double seconds) = 0;
    virtual CSnapshot_Lens* AcquireLensSnapshot(double seconds) = 0;
    virtual CSnapshot_Shape* AcquireShapeSnapshot(double seconds) = 0;

    virtual void ReleaseHelperSnapshot(CSnapshot_Helper* snapshot) = 0;
    virtual void ReleaseMeshSnapshot(CSnapshot_Mesh* snapshot) = 0;
    virtual void ReleaseLensSnapshot(CSnapshot_Lens* snapshot) = 0;
    virtual void ReleaseShapeSnapshot(CSnapshot_Shape* snapshot) = 0;
    virtual void ReleaseSnapshot(CSnapshot* snapshot) = 0;

    // Whether both stand for the same scene node of the host.
    virtual bool IsSameNode(CoreNode* other) = 0;

    // Keeps the world transform. Null puts the node at the top of the scene.
    virtual void SetParent(CoreNode* parent) = 0;

    // Deletes every key later than the time; a key exactly at it stays.
    virtual void DeleteAnimationFrom(double seconds) = 0;

    // The host's name of the node.
    virtual void SetName(std::string hostName) = 0;
    virtual std::string GetName() = 0;

    // Ends the node: with the host's node, or leaving that with the host's default controllers.
    // Inside an undo group the node goes into the undo record and this pointer stays usable for
    // undo; otherwise it is gone. A snapshot node is gone in every case, but for one on an
    // element's node that was not reached from a node of that element: there nothing happens.
    virtual void Delete(bool deleteHostNode) = 0;

    // A plain copy in the scene, with or without what stands below; a new snapshot node on it, or
    // null if nothing was copied.
    virtual CoreNode* Clone(bool withHierarchy) = 0;

  protected:
    CoreElement* owner = nullptr;  // null for a node without owner
    CoreNode* source = nullptr;    // the node through which a snapshot node was reached, or null
    bool recordable = true;
    std::vector<std::string> notes;  // for the Core's side; no adaptor reads or writes it
};

// The common part of all snapshots: the node that lends them and whether they are out. The order of
// the fields is part of the contract.
class CoreNode::Snapshot : public CSnapshot {
  protected:
    CNode* node = nullptr;
    CoreElement* owner = nullptr;  // the node's at the time of creation
    CoreNode* coreNode = nullptr;  // written at every acquisition
    bool acquired = false;
};

class CoreNode::Snapshot_Helper : public CSnapshot_Helper {
  protected:
    CNode* node = nullptr;
    bool acquired = false;
};

class CoreNode::Snapshot_Lens : public CSnapshot_Lens {
  protected:
    CNode* node = nullptr;
    bool acquired = false;
};

class CoreNode::Snapshot_Mesh : public CSnapshot_Mesh {
  protected:
    CNode* node = nullptr;
    bool acquired = false;
};

class CoreNode::Snapshot_Shape : public CSnapshot_Shape {
  protected:
    CNode* node = nullptr;
    bool acquired = false;
};

}  // namespace TVL
