#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "foundation/live_instances.h"
#include "nodes/host_node_link.h"
#include "nodes/node_list.h"
#include "nodes/snapshot_pool.h"
#include "tvl/node.h"

class NodeWatch;

// The node that stands for one scene node of the host. A real node has an owner and a name of the
// Core's and is listed by the adaptor (node_list.h); a snapshot node is a handle on any scene node,
// in no list, and belongs to whoever received it.
//
// The host may delete the scene node at any moment: the node then answers null, false or nothing,
// and works again when an undo has brought the scene node back.
class CMAXNode final : public TVL::CoreNode {
  public:
    class CMAXSnapshot;
    class CMAXSnapshot_Helper;
    class CMAXSnapshot_Lens;
    class CMAXSnapshot_Mesh;
    class CMAXSnapshot_Shape;

    // A real node. It is listed, and its host node hung below the parent's, if both are given.
    CMAXNode(TVL::CoreElement* nodeOwner, std::string nodeName, INode* parentHost, INode* host);

    // A snapshot node, reached through another node or through none. It takes name and owner of the
    // real node on the same scene node, if there is one, else the host's name.
    CMAXNode(CMAXNode* reachedFrom, INode* host);

    ~CMAXNode() override;
    CMAXNode(const CMAXNode&) = delete;
    CMAXNode& operator=(const CMAXNode&) = delete;

    std::intptr_t HandleExtension(int id, void* argument) override;
    std::vector<int> ListExtensions() override;

    void Show() override;
    void Hide() override;
    bool IsVisible() override;
    void Select() override;
    bool IsSnapshot() override { return isSnapshot; }
    TVL::CNode* GetParent() override;
    int GetChildCount() override;
    TVL::CNode* GetChild(int index) override;
    void ReleaseNode(TVL::CNode* node) override;

    void Destroy() override;
    TVL::CoreNode* Claim(TVL::CoreElement* newOwner, std::string newName) override;
    void Unclaim() override;

    TVL::CSnapshot* AcquireSnapshot(double seconds) override;
    TVL::CSnapshot_Helper* AcquireHelperSnapshot() override;
    TVL::CSnapshot_Mesh* AcquireMeshSnapshot(double seconds) override;
    TVL::CSnapshot_Lens* AcquireLensSnapshot(double seconds) override;
    TVL::CSnapshot_Shape* AcquireShapeSnapshot(double seconds) override;
    void ReleaseHelperSnapshot(TVL::CSnapshot_Helper* snapshot) override;
    void ReleaseMeshSnapshot(TVL::CSnapshot_Mesh* snapshot) override;
    void ReleaseLensSnapshot(TVL::CSnapshot_Lens* snapshot) override;
    void ReleaseShapeSnapshot(TVL::CSnapshot_Shape* snapshot) override;
    void ReleaseSnapshot(TVL::CSnapshot* snapshot) override;

    bool IsSameNode(TVL::CoreNode* other) override;
    void SetParent(TVL::CoreNode* parent) override;
    void DeleteAnimationFrom(double seconds) override;
    void SetName(std::string hostName) override;
    std::string GetName() override;
    void Delete(bool deleteHostNode) override;
    TVL::CoreNode* Clone(bool withHierarchy) override;

    // For the adaptor's own rooms.

    // AcquireSnapshot, where an exception is heard of.
    CMAXSnapshot* LendSnapshot(double seconds);

    INode* HostNode() const { return hostNode.Get(); }  // null while it is not in the scene
    const HostNodeLink& HostLink() const { return hostNode; }
    TVL::CoreElement* Owner() const { return owner; }
    const std::string& NodeName() const { return name; }
    TVL::NodeListener* Listener() const { return listener; }
    bool IsRecordable() const { return recordable; }
    NodeListing& Listing() { return listing; }
    const NodeListing& Listing() const { return listing; }

    // From here on the node knows neither owner nor listener, nor who was the owner of its source.
    // False if an earlier call has left nothing to forget.
    bool ForgetCore();

    // False: no batch was open.
    static bool EndSelectionBatch();

    // Real nodes and snapshot nodes.
    static LiveInstances<CMAXNode> liveInstances;

  private:
    friend class NodeWatch;
    friend class LiveInstances<CMAXNode>;

    CMAXNode(bool snapshot, INode* host);
    CMAXNode* CloneHostNode(bool withHierarchy, const CMAXNode* parent = nullptr);
    std::intptr_t ConvertToHostController();
    void DeleteReal(bool deleteHostNode);
    void DeleteSnapshotNode(bool deleteHostNode);
    bool MayDeleteThroughSource() const;
    void SettleHostSide(bool deleteHostNode);
    void EmptyWatches();
    void JoinSource(CMAXNode& reachedFrom);
    void LeaveSource();
    void LoseReached();

    bool isSnapshot;
    HostNodeLink hostNode;
    SnapshotPool<CMAXSnapshot> transformPool;
    SnapshotPool<CMAXSnapshot_Helper> helperPool;
    SnapshotPool<CMAXSnapshot_Lens> lensPool;
    SnapshotPool<CMAXSnapshot_Mesh> meshPool;
    SnapshotPool<CMAXSnapshot_Shape> shapePool;

    bool isForgotten = false;                 // by the Core that it was made for
    TVL::CoreElement* sourceOwner = nullptr;  // owner of `source` when this node was made
    NodeListing listing;
    std::vector<NodeWatch*> watches;  // who wants to know when this node dies

    // The nodes whose `source` is this one, and this one among those of its own.
    CMAXNode* newestReached = nullptr;
    CMAXNode* newerOfSource = nullptr;
    CMAXNode* olderOfSource = nullptr;

    LiveLink<CMAXNode> liveLink;
};

// Snapshot nodes on their way to the Core, with null for each that there is not.
using NewNodes = std::vector<std::unique_ptr<CMAXNode>>;

// They are the Core's from here on.
std::vector<TVL::CNode*> GiveAway(NewNodes nodes);
