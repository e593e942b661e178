#include "controllers/base_control.h"
#include "core_link/core_answer.h"
#include "measures/core_space.h"
#include "measures/host_clock.h"
#include "nodes/snapshots.h"

namespace {

// What a local transform is relative to; null below the root, where it is the world transform.
INode* ParentBelowRoot(INode& host) {
    INode* const parent = host.GetParentNode();
    return parent && !parent->IsRootNode() ? parent : nullptr;
}

}  // namespace

void CMAXNode::CMAXSnapshot::Acquire(CMAXNode& lender, double time) {
    coreNode = &lender;
    ticks = SnapshotTicks(time);
    seconds = time;
    hostNode = lender.hostNode;
}

void CMAXNode::CMAXSnapshot::LoseHost() {
    coreNode = nullptr;
    hostNode = {};
}

TVL::CMatrix4 CMAXNode::CMAXSnapshot::World() const {
    INode* const host = hostNode.Get();
    return host ? ToCoreWorld(host->GetNodeTM(ticks)) : TVL::CMatrix4::Identity();
}

void CMAXNode::CMAXSnapshot::PutWorld(const TVL::CMatrix4& transform) {
    if (INode* host = hostNode.Get()) SetHostTransform(*host, ToHostWorld(transform));
}

TVL::CMatrix4 CMAXNode::CMAXSnapshot::GetWorldTransform() {
    return AnswerCore("GetWorldTransform", TVL::CMatrix4::Identity(), [&] { return World(); });
}

void CMAXNode::CMAXSnapshot::SetWorldTransform(const TVL::CMatrix4& transform) {
    AnswerCore("SetWorldTransform", [&] { PutWorld(transform); });
}

TVL::CMatrix4 CMAXNode::CMAXSnapshot::GetLocalTransform() {
    return AnswerCore("GetLocalTransform", TVL::CMatrix4::Identity(), [&] {
        INode* const host = hostNode.Get();
        INode* const parent = host ? ParentBelowRoot(*host) : nullptr;
        return parent ? HostTransform(*host) * Inverse(HostTransform(*parent)) : World();
    });
}

void CMAXNode::CMAXSnapshot::SetLocalTransform(const TVL::CMatrix4& transform) {
    AnswerCore("SetLocalTransform", [&] {
        INode* const host = hostNode.Get();
        INode* const parent = host ? ParentBelowRoot(*host) : nullptr;
        if (!parent) return PutWorld(transform);
        SetHostTransform(*host, ToHost(Affine(transform) * HostTransform(*parent)));
    });
}

TVL::CMatrix4 CMAXNode::CMAXSnapshot::HostTransform(INode& host) const {
    return ToCore(host.GetNodeTM(ticks));
}

void CMAXNode::CMAXSnapshot::SetHostTransform(INode& host, const Matrix3& transform) {
    host.SetNodeTM(ticks, transform);
    AnnounceChange(host);
}

CMAXNode::CMAXSnapshot* CMAXNode::LendSnapshot(double seconds) {
    return HostNode() ? transformPool.Lend(*this, seconds) : nullptr;
}

TVL::CSnapshot* CMAXNode::AcquireSnapshot(double seconds) {
    return AnswerCore("AcquireSnapshot", [&] { return LendSnapshot(seconds); });
}

void CMAXNode::ReleaseSnapshot(TVL::CSnapshot* snapshot) {
    transformPool.TakeBack(snapshot);
}
