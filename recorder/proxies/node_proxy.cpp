#include "recorder/proxies/nodes.h"
#include "tvl/ids.h"

namespace recorder {

NodeProxy::NodeProxy(Nodes& nodes, NodeListener* ofCore)
    : ExtendableProxy(nodes.scribe_, nodes.scribe_.NewId(ObjectKind::kNode), nullptr),
      nodes_(nodes),
      toldListener_(ofCore) {
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

template <Operation kOperation, class... Which>
NodeProxy* NodeProxy::Give(Which... which) {
    const auto make = [&] {
        return real_ ? nodes_.New((real_->*kMethodOf<kOperation>)(which...)) : nullptr;
    };
    return scribe_.Record<kOperation>(id_, make, which...);
}
CNode* NodeProxy::GetParent() {
    return Give<CNode_GetParent>();
}
CNode* NodeProxy::GetChild(int index) {
    return Give<CNode_GetChild>(index);
}
CoreNode* NodeProxy::Clone(bool withHierarchy) {
    return Give<CoreNode_Clone>(withHierarchy);
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

CoreNode* NodeProxy::Claim(CoreElement* newOwner, std::string newName) {
    OwnerProxy* const claimant = nodes_.owners_.Named(newOwner);
    const auto make = [&]() -> NodeProxy* {
        CoreNode* const claimed = real_ ? real_->Claim(claimant, std::move(newName)) : nullptr;
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
    const CoreElement* const owns = real_->*&NodeProxy::owner;
    CoreNode* const reachedFrom = real_->*&NodeProxy::source;
    return !owns || owns == (reachedFrom ? reachedFrom->*&NodeProxy::owner : sourceOwner_);
}

// What the listener hears ------------------------------------------------------------------------

// The Core can set another listener at any time.
template <Operation kOperation>
void NodeProxy::Hear() {
    NodeListener* const told = listener;
    if (!told) return;
    if (!isTold_) nodes_.Tell(*this);
    toldListener_ = told;
    const ObjectId id = scribe_.IdOf(ObjectKind::kListener, told);
    scribe_.Record<kOperation>(
        id, [&] { (told->*kMethodOf<kOperation>)(this); }, this);
}

void NodeProxy::OnNodeRestored(CNode* node) {
    if (!real_) nodes_.Bind(*this, node);
    isListed_ = true;
    Hear<NodeListener_OnNodeRestored>();
}

// The adaptor lists the node until this returns, however it does.
void NodeProxy::OnNodeRemoved(CNode* node) {
    if (!real_) nodes_.Bind(*this, node);
    ++removals_;
    const AtEnd unlist([this] { isListed_ = false; });
    Hear<NodeListener_OnNodeRemoved>();
}

}  // namespace recorder
