#include "recorder/proxies/nodes.h"
#include "tvl/ids.h"

namespace recorder {

using TVL::CNode;
using TVL::CoreNode;
using enum Operation;

NodeProxy::NodeProxy(Nodes& nodes, TVL::NodeListener* ofCore)
    : ExtendableProxy(nodes.scribe_, nodes.scribe_.NewId(ObjectKind::kNode), nullptr),
      nodes_(nodes) {
    listener = ofCore;
}

// Extensions -------------------------------------------------------------------------------------

std::intptr_t NodeProxy::HandleExtension(int id, void* argument) {
    if (id != TVL::kIsSameNode && id != TVL::kCloneBelow)
        return ExtendableProxy::HandleExtension(id, argument);
    const NodeProxy* const other = From(static_cast<CoreNode*>(argument));
    const ExtensionValue said{other ? 'o' : '\0', other ? other->Id() : 0, nullptr};
    if (id == TVL::kIsSameNode)
        return Extend(id, RealOf(other), said, [](std::intptr_t result) { return result; });
    return Extend(id, RealOf(other), said, [this](std::intptr_t result) {
        return nodes_.New(reinterpret_cast<CoreNode*>(result));
    });
}

// The node in the scene --------------------------------------------------------------------------

void NodeProxy::Show() {
    Pass<CNode_Show, &CoreNode::Show>();
}
void NodeProxy::Hide() {
    Pass<CNode_Hide, &CoreNode::Hide>();
}
bool NodeProxy::IsVisible() {
    return Pass<CNode_IsVisible, &CoreNode::IsVisible>();
}
void NodeProxy::Select() {
    Pass<CNode_Select, &CoreNode::Select>();
}
bool NodeProxy::IsSnapshot() {
    return Pass<CNode_IsSnapshot, &CoreNode::IsSnapshot>();
}
int NodeProxy::GetChildCount() {
    return Pass<CNode_GetChildCount, &CoreNode::GetChildCount>();
}
void NodeProxy::DeleteAnimationFrom(double seconds) {
    Pass<CoreNode_DeleteAnimationFrom, &CoreNode::DeleteAnimationFrom>(seconds);
}
void NodeProxy::SetName(std::string hostName) {
    Pass<CoreNode_SetName, &CoreNode::SetName>(std::move(hostName));
}
std::string NodeProxy::GetName() {
    return Pass<CoreNode_GetName, &CoreNode::GetName>();
}

CNode* NodeProxy::GetParent() {
    const auto make = [&] { return real_ ? nodes_.New(real_->GetParent()) : nullptr; };
    return scribe_.Record<CNode_GetParent>(id_, make);
}
CNode* NodeProxy::GetChild(int index) {
    const auto make = [&] { return real_ ? nodes_.New(real_->GetChild(index)) : nullptr; };
    return scribe_.Record<CNode_GetChild>(id_, make, index);
}
CoreNode* NodeProxy::Clone(bool withHierarchy) {
    const auto make = [&] { return real_ ? nodes_.New(real_->Clone(withHierarchy)) : nullptr; };
    return scribe_.Record<CoreNode_Clone>(id_, make, withHierarchy);
}

bool NodeProxy::IsSameNode(CoreNode* other) {
    const NodeProxy* const given = From(other);
    const auto make = [&] { return real_ && real_->IsSameNode(RealOf(given)); };
    return scribe_.Record<CoreNode_IsSameNode>(id_, make, given);
}

// A parent that has gone is not the same as none.
void NodeProxy::SetParent(CoreNode* parent) {
    const NodeProxy* const given = From(parent);
    const auto make = [&] {
        if (real_ && (!given || given->real_)) real_->SetParent(RealOf(given));
    };
    scribe_.Record<CoreNode_SetParent>(id_, make, given);
}

// The life of the node ---------------------------------------------------------------------------

void NodeProxy::ReleaseNode(CNode* node) {
    NodeProxy* const given = From(node);
    const auto make = [&] {
        CoreNode* const through = real_;
        CoreNode* const released = RealOf(given);
        if (!through || !released) return;
        nodes_.End(*given);
        through->ReleaseNode(released);
    };
    scribe_.Record<CNode_ReleaseNode>(id_, make, given);
}

void NodeProxy::Destroy() {
    const auto make = [&] {
        CoreNode* const destroyed = real_;
        if (!destroyed) return;
        nodes_.End(*this);
        destroyed->Destroy();
    };
    scribe_.Record<CoreNode_Destroy>(id_, make);
}

CoreNode* NodeProxy::Claim(TVL::CoreElement* newOwner, std::string newName) {
    OwnerProxy* const claimant = nodes_.owners_.Named(newOwner);
    const auto make = [&]() -> NodeProxy* {
        CoreNode* const claimed = real_ ? real_->Claim(claimant, newName) : nullptr;
        NodeProxy* const proxy = nodes_.New(claimed);
        if (proxy) claimed->SetListener(proxy);
        return proxy;
    };
    return scribe_.Record<CoreNode_Claim>(id_, make, claimant, newName);
}

void NodeProxy::Unclaim() {
    const auto make = [&] {
        if (!real_) return;
        real_->Unclaim();
        name = real_->GetNodeName();
        nodes_.Unlist(*this);
    };
    scribe_.Record<CoreNode_Unclaim>(id_, make);
}

// A real node that is listed ends, unless it goes into an undo record, which its listener is told.
// Of a snapshot node it is told beforehand.
void NodeProxy::Delete(bool deleteHostNode) {
    const auto make = [&] {
        if (!real_) return;
        const bool wasSnapshot = isSnapshot_;
        const bool mayEnd = wasSnapshot ? EndsWhenDeleted() : std::exchange(isListed_, false);
        const std::uint64_t removals = removals_;
        real_->Delete(deleteHostNode);
        if (mayEnd && removals_ == removals && isSnapshot_ == wasSnapshot) nodes_.End(*this);
    };
    scribe_.Record<CoreNode_Delete>(id_, make, deleteHostNode);
}

// A node of an owner's can be deleted through a snapshot node only if that was reached from a node
// of the same owner. The fields are those of the contract.
bool NodeProxy::EndsWhenDeleted() {
    const TVL::CoreElement* const owns = real_->*&NodeProxy::owner;
    CoreNode* const reachedFrom = real_->*&NodeProxy::source;
    return !owns || owns == (reachedFrom ? reachedFrom->*&NodeProxy::owner : sourceOwner_);
}

// What the listener hears ------------------------------------------------------------------------

// The Core can set another listener at any time.
template <Operation kOperation, auto kMethod>
void NodeProxy::Hear() {
    TVL::NodeListener* const told = listener;
    if (!told) return;
    if (!isTold_) nodes_.Tell(*this);
    const ObjectId id = scribe_.IdOf(ObjectKind::kListener, told);
    scribe_.Record<kOperation>(
        id, [&] { (told->*kMethod)(this); }, this);
}

void NodeProxy::OnNodeRestored(CNode* node) {
    if (!real_) nodes_.Bind(*this, node);
    isListed_ = true;
    Hear<NodeListener_OnNodeRestored, &NodeListener::OnNodeRestored>();
}

// The adaptor lists the node until this returns, however it does.
void NodeProxy::OnNodeRemoved(CNode* node) {
    if (!real_) nodes_.Bind(*this, node);
    ++removals_;
    const AtEnd unlist([this] { isListed_ = false; });
    Hear<NodeListener_OnNodeRemoved, &NodeListener::OnNodeRemoved>();
}

// Snapshots --------------------------------------------------------------------------------------

template <Operation kOperation, auto kMethod, class Proxy, class... Time>
Proxy* NodeProxy::Lend(ProxyPool<Proxy>& pool, Time... seconds) {
    const auto make = [&]() -> Proxy* {
        if (!real_ || !pool.MakeRoom(scribe_, nodes_.mutex_)) return nullptr;
        auto* const lent = (real_->*kMethod)(seconds...);
        if (!lent) return nullptr;
        Proxy& proxy = pool.Of(lent);
        proxy.GoOut(seconds...);
        return &proxy;
    };
    return scribe_.Record<kOperation>(id_, make, seconds...);
}

template <Operation kOperation, auto kMethod, class Proxy, class Lent>
void NodeProxy::TakeBack(Lent* snapshot) {
    auto* const proxy = static_cast<Proxy*>(snapshot);
    const auto make = [&] {
        if (!real_ || !proxy || !proxy->Behind()) return;
        proxy->ComeBack();
        (real_->*kMethod)(proxy->Behind());
    };
    scribe_.Record<kOperation>(id_, make, proxy);
}

TVL::CSnapshot* NodeProxy::AcquireSnapshot(double seconds) {
    return Lend<CoreNode_AcquireSnapshot, &CoreNode::AcquireSnapshot>(transforms_, seconds);
}
TVL::CSnapshot_Helper* NodeProxy::AcquireHelperSnapshot() {
    return Lend<CoreNode_AcquireHelperSnapshot, &CoreNode::AcquireHelperSnapshot>(helpers_);
}
TVL::CSnapshot_Mesh* NodeProxy::AcquireMeshSnapshot(double seconds) {
    return Lend<CoreNode_AcquireMeshSnapshot, &CoreNode::AcquireMeshSnapshot>(meshes_, seconds);
}
TVL::CSnapshot_Lens* NodeProxy::AcquireLensSnapshot(double seconds) {
    return Lend<CoreNode_AcquireLensSnapshot, &CoreNode::AcquireLensSnapshot>(lenses_, seconds);
}
TVL::CSnapshot_Shape* NodeProxy::AcquireShapeSnapshot(double seconds) {
    return Lend<CoreNode_AcquireShapeSnapshot, &CoreNode::AcquireShapeSnapshot>(shapes_, seconds);
}

void NodeProxy::ReleaseSnapshot(TVL::CSnapshot* snapshot) {
    TakeBack<CoreNode_ReleaseSnapshot, &CoreNode::ReleaseSnapshot, TransformProxy>(snapshot);
}
void NodeProxy::ReleaseHelperSnapshot(TVL::CSnapshot_Helper* snapshot) {
    TakeBack<CoreNode_ReleaseHelperSnapshot, &CoreNode::ReleaseHelperSnapshot, HelperProxy>(
        snapshot);
}
void NodeProxy::ReleaseMeshSnapshot(TVL::CSnapshot_Mesh* snapshot) {
    TakeBack<CoreNode_ReleaseMeshSnapshot, &CoreNode::ReleaseMeshSnapshot, MeshProxy>(snapshot);
}
void NodeProxy::ReleaseLensSnapshot(TVL::CSnapshot_Lens* snapshot) {
    TakeBack<CoreNode_ReleaseLensSnapshot, &CoreNode::ReleaseLensSnapshot, LensProxy>(snapshot);
}
void NodeProxy::ReleaseShapeSnapshot(TVL::CSnapshot_Shape* snapshot) {
    TakeBack<CoreNode_ReleaseShapeSnapshot, &CoreNode::ReleaseShapeSnapshot, ShapeProxy>(snapshot);
}

}  // namespace recorder
