#pragma once

#include <list>
#include <mutex>
#include <unordered_map>

#include "recorder/proxies/owners.h"
#include "recorder/proxies/snapshots.h"
#include "tvl/node.h"

namespace recorder {

class Nodes;

// Stands for a node of the adaptor's, and is what a real one's listener is there: it tells whoever
// is the Core's listener at that moment.
class NodeProxy final : public ExtendableProxy<TVL::CoreNode>, private TVL::NodeListener {
  public:
    NodeProxy(Nodes& nodes, TVL::NodeListener* ofCore);

    // The proxy that a node of the Core's is; null for null.
    static NodeProxy* From(TVL::CNode* node) { return static_cast<NodeProxy*>(node); }

    std::intptr_t HandleExtension(int id, void* argument) override;

    void Show() override;
    void Hide() override;
    bool IsVisible() override;
    void Select() override;
    bool IsSnapshot() override;
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

  private:
    friend class Nodes;

    TVL::NodeListener* Ear() { return this; }
    void OnNodeRemoved(TVL::CNode* node) override;
    void OnNodeRestored(TVL::CNode* node) override;

    template <Operation kOperation, auto kMethod>
    void Hear();
    template <Operation kOperation, auto kMethod, class Proxy, class... Time>
    Proxy* Lend(ProxyPool<Proxy>& pool, Time... seconds);
    template <Operation kOperation, auto kMethod, class Proxy, class Lent>
    void TakeBack(Lent* snapshot);
    bool EndsWhenDeleted();

    template <class Visit>
    void ForEachSnapshot(const Visit& visit) const {
        transforms_.ForEach(visit);
        helpers_.ForEach(visit);
        meshes_.ForEach(visit);
        lenses_.ForEach(visit);
        shapes_.ForEach(visit);
    }

    Nodes& nodes_;
    std::list<NodeProxy>::iterator self_;
    std::string hostName_;                     // as it was told last
    ObjectId ownerId_ = 0;                     // the same
    TVL::CoreElement* sourceOwner_ = nullptr;  // of a snapshot node's source, when it was made
    bool isTold_ = false;
    bool isEnded_ = false;
    bool isKept_ = false;          // among those that have ended
    std::uint64_t keptSince_ = 0;  // see Scribe::Rests
    bool isSnapshot_ = false;
    bool isListed_ = false;       // a real node, by the adaptor
    std::uint64_t removals_ = 0;  // that were heard of

    ProxyPool<TransformProxy> transforms_;
    ProxyPool<HelperProxy> helpers_;
    ProxyPool<MeshProxy> meshes_;
    ProxyPool<LensProxy> lenses_;
    ProxyPool<ShapeProxy> shapes_;
};

inline TVL::CoreNode* RealOf(const NodeProxy* node) {
    return node ? node->Behind() : nullptr;
}

// The nodes that the Core has, or had: a good number of those that have ended are kept, so that
// their use can be told.
class Nodes {
  public:
    Nodes(Scribe& scribe, Owners& owners) : scribe_(scribe), owners_(owners) {}

    // For a node that the adaptor has made just now; null for null. One for which there is no
    // memory is given back.
    NodeProxy* New(TVL::CNode* made);
    std::vector<NodeProxy*> New(const std::vector<TVL::CNode*>& made);

    // For real nodes that it gives once more.
    NodeProxy* Known(TVL::CNode* given);
    std::vector<NodeProxy*> Known(const std::vector<TVL::CNode*>& given);

    // For one that `create` makes with the listener that it is given, and which may be called by
    // then already. The Core's may be null.
    template <class Create>
    NodeProxy* Created(TVL::NodeListener* ofCore, const Create& create);

    // The Core has left: nothing is behind any of them.
    void LetGo();

    void TellObjects(const TapeWriter::TellObject& tell) const;

  private:
    friend class NodeProxy;
    static constexpr std::size_t kKept = 4096;

    NodeProxy* Await(TVL::NodeListener* ofCore) noexcept;
    void Bind(NodeProxy& proxy, TVL::CNode* real);
    void Tell(NodeProxy& proxy);
    void End(NodeProxy& proxy);
    void Keep(NodeProxy& proxy);
    void Unlist(NodeProxy& proxy);
    void FinishCreation(NodeProxy& proxy, TVL::CNode* made);
    ObjectFacts FactsOf(const NodeProxy& proxy) const;

    Scribe& scribe_;
    Owners& owners_;
    mutable std::mutex mutex_;
    std::list<NodeProxy> alive_;
    std::list<NodeProxy> ended_;                                // the oldest first
    std::unordered_map<const TVL::CNode*, NodeProxy*> byReal_;  // of real nodes
};

template <class Create>
NodeProxy* Nodes::Created(TVL::NodeListener* ofCore, const Create& create) {
    NodeProxy* const proxy = Await(ofCore);
    if (!proxy) return nullptr;
    TVL::CNode* const made = create(proxy->Ear());
    FinishCreation(*proxy, made);
    return made ? proxy : nullptr;
}

}  // namespace recorder
