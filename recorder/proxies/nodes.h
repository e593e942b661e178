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
class NodeProxy final : public ExtendableProxy<CoreNode>, private NodeListener {
  public:
    NodeProxy(Nodes& nodes, NodeListener* ofCore);

    // The proxy that a node of the Core's is; null for null.
    static NodeProxy* From(CNode* node) { return static_cast<NodeProxy*>(node); }

    using enum Operation;

    std::intptr_t HandleExtension(int id, void* argument) override;

    void Show() override { Pass<CNode_Show>(); }
    void Hide() override { Pass<CNode_Hide>(); }
    bool IsVisible() override { return Pass<CNode_IsVisible>(); }
    void Select() override { Pass<CNode_Select>(); }
    bool IsSnapshot() override { return Pass<CNode_IsSnapshot>(); }
    CNode* GetParent() override;
    int GetChildCount() override { return Pass<CNode_GetChildCount>(); }
    CNode* GetChild(int index) override;
    void ReleaseNode(CNode* node) override;

    void Destroy() override;
    CoreNode* Claim(CoreElement* newOwner, std::string newName) override;
    void Unclaim() override;

    CSnapshot* AcquireSnapshot(double seconds) override {
        return Lend<CoreNode_AcquireSnapshot>(transforms_, seconds);
    }
    CSnapshot_Helper* AcquireHelperSnapshot() override {
        return Lend<CoreNode_AcquireHelperSnapshot>(helpers_);
    }
    CSnapshot_Mesh* AcquireMeshSnapshot(double seconds) override {
        return Lend<CoreNode_AcquireMeshSnapshot>(meshes_, seconds);
    }
    CSnapshot_Lens* AcquireLensSnapshot(double seconds) override {
        return Lend<CoreNode_AcquireLensSnapshot>(lenses_, seconds);
    }
    CSnapshot_Shape* AcquireShapeSnapshot(double seconds) override {
        return Lend<CoreNode_AcquireShapeSnapshot>(shapes_, seconds);
    }
    void ReleaseHelperSnapshot(CSnapshot_Helper* snapshot) override {
        TakeBack<CoreNode_ReleaseHelperSnapshot>(static_cast<HelperProxy*>(snapshot));
    }
    void ReleaseMeshSnapshot(CSnapshot_Mesh* snapshot) override {
        TakeBack<CoreNode_ReleaseMeshSnapshot>(static_cast<MeshProxy*>(snapshot));
    }
    void ReleaseLensSnapshot(CSnapshot_Lens* snapshot) override {
        TakeBack<CoreNode_ReleaseLensSnapshot>(static_cast<LensProxy*>(snapshot));
    }
    void ReleaseShapeSnapshot(CSnapshot_Shape* snapshot) override {
        TakeBack<CoreNode_ReleaseShapeSnapshot>(static_cast<ShapeProxy*>(snapshot));
    }
    void ReleaseSnapshot(CSnapshot* snapshot) override {
        TakeBack<CoreNode_ReleaseSnapshot>(static_cast<TransformProxy*>(snapshot));
    }

    bool IsSameNode(CoreNode* other) override;
    void SetParent(CoreNode* parent) override;
    void DeleteAnimationFrom(double seconds) override {
        Pass<CoreNode_DeleteAnimationFrom>(seconds);
    }
    void SetName(std::string hostName) override { Pass<CoreNode_SetName>(std::move(hostName)); }
    std::string GetName() override { return Pass<CoreNode_GetName>(); }
    void Delete(bool deleteHostNode) override;
    CoreNode* Clone(bool withHierarchy) override;

  private:
    friend class Nodes;

    NodeListener* Ear() { return this; }
    void OnNodeRemoved(CNode* node) override;
    void OnNodeRestored(CNode* node) override;

    template <Operation kOperation>
    void Hear();
    template <Operation kOperation, class... Which>
    NodeProxy* Give(Which... which);
    template <Operation kOperation, class Lent, class... Time>
    Lent* Lend(ProxyPool<Lent>& pool, Time... seconds);
    template <Operation kOperation, class Lent>
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
    std::string hostName_;                // as it was told last
    ObjectId ownerId_ = 0;                // the same
    CoreElement* sourceOwner_ = nullptr;  // of a snapshot node's source, when it was made
    NodeListener* toldListener_;          // as a call, or a record, told last
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

inline CoreNode* RealOf(const NodeProxy* node) {
    return node ? node->Behind() : nullptr;
}

// The nodes that the Core has, or had: a good number of those that have ended are kept, so that
// their use can be told.
class Nodes {
  public:
    Nodes(Scribe& scribe, Owners& owners) : scribe_(scribe), owners_(owners) {
        owners_.onUserDeletion = [this] { TellListeners(); };
    }

    // For a node that the adaptor has made just now; null for null. One for which there is no
    // memory is given back.
    NodeProxy* New(CNode* made);
    std::vector<CNode*> New(std::vector<CNode*> made);

    // For real nodes that it gives once more.
    NodeProxy* Known(CNode* given);
    std::vector<CNode*> Known(std::vector<CNode*> given);

    // For one that `create` makes with the listener that it is given, and which may be called by
    // then already. The Core's may be null.
    template <class Create>
    NodeProxy* Created(NodeListener* ofCore, const Create& create);

    // The Core has left: nothing is behind any of them.
    void LetGo();

    // Tells whose listener has become another one without a call.
    void TellListeners() noexcept;

    void TellObjects(const TapeWriter::TellObject& tell) const;

  private:
    friend class NodeProxy;
    static constexpr std::size_t kKept = 4096;

    NodeProxy* Await(NodeListener* ofCore) noexcept;
    void Bind(NodeProxy& proxy, CNode* real) noexcept;
    void Tell(NodeProxy& proxy) noexcept;
    void End(NodeProxy& proxy);
    void Keep(NodeProxy& proxy);
    void Unlist(NodeProxy& proxy);
    void FinishCreation(NodeProxy& proxy, CNode* made) noexcept;
    ObjectFacts FactsOf(const NodeProxy& proxy) const;

    Scribe& scribe_;
    Owners& owners_;
    mutable std::mutex mutex_;
    std::list<NodeProxy> alive_;
    std::list<NodeProxy> ended_;                           // the oldest first
    std::unordered_map<const CNode*, NodeProxy*> byReal_;  // of real nodes
};

template <Operation kOperation, class Lent, class... Time>
Lent* NodeProxy::Lend(ProxyPool<Lent>& pool, Time... seconds) {
    const auto make = [&]() -> Lent* {
        if (!real_ || !pool.MakeRoom(scribe_, nodes_.mutex_)) return nullptr;
        auto* const real = (real_->*kMethodOf<kOperation>)(seconds...);
        if (!real) return nullptr;
        Lent& proxy = pool.Of(real);
        proxy.GoOut(seconds...);
        return &proxy;
    };
    return scribe_.Record<kOperation>(id_, make, seconds...);
}

template <Operation kOperation, class Lent>
void NodeProxy::TakeBack(Lent* snapshot) {
    const auto make = [&] {
        if (!real_ || !snapshot || !snapshot->Behind()) return;
        snapshot->ComeBack();
        (real_->*kMethodOf<kOperation>)(snapshot->Behind());
    };
    scribe_.Record<kOperation>(id_, make, snapshot);
}

template <class Create>
NodeProxy* Nodes::Created(NodeListener* ofCore, const Create& create) {
    NodeProxy* const proxy = Await(ofCore);
    if (!proxy) return nullptr;
    CNode* const made = create(proxy->Ear());
    FinishCreation(*proxy, made);
    return made ? proxy : nullptr;
}

}  // namespace recorder
