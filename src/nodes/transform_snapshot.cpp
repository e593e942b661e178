#include "controllers/base_control.h"
#include "core_link/core_answer.h"
#include "measures/core_space.h"
#include "measures/host_clock.h"
#include "nodes/snapshots.h"

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
    if (!host) return TVL::CMatrix4::Identity();
    return HostTransform(*host) * Inverse(CoreToHostBase());
}

void CMAXNode::CMAXSnapshot::PutWorld(const TVL::CMatrix4& transform) {
    if (INode* host = hostNode.Get()) SetHostTransform(*host, transform * CoreToHostBase());
}

TVL::CMatrix4 CMAXNode::CMAXSnapshot::GetWorldTransform() {
    return AnswerCore("GetWorldTransform", TVL::CMatrix4::Identity(), [&] { return World(); });
}

void CMAXNode::CMAXSnapshot::SetWorldTransform(const TVL::CMatrix4& transform) {
    AnswerCore("SetWorldTransform", [&] { PutWorld(transform); });
}

TVL::CMatrix4 CMAXNode::CMAXSnapshot::GetLocalTransform() {
    return AnswerCore("GetLocalTransform", TVL::CMatrix4::Identity(), [&]() -> TVL::CMatrix4 {
        INode* const host = hostNode.Get();
        if (!host) return TVL::CMatrix4::Identity();
        return HostTransform(*host) * Inverse(LocalBase(*host));
    });
}

void CMAXNode::CMAXSnapshot::SetLocalTransform(const TVL::CMatrix4& transform) {
    AnswerCore("SetLocalTransform", [&] {
        if (INode* host = hostNode.Get()) SetHostTransform(*host, transform * LocalBase(*host));
    });
}

// What a local transform is relative to: the parent, or Core world space below the root.
TVL::CMatrix4 CMAXNode::CMAXSnapshot::LocalBase(INode& host) const {
    INode* const parent = host.GetParentNode();
    return parent && !parent->IsRootNode() ? HostTransform(*parent) : CoreToHostBase();
}

TVL::CMatrix4 CMAXNode::CMAXSnapshot::HostTransform(INode& host) const {
    return ToCore(host.GetNodeTM(ticks));
}

void CMAXNode::CMAXSnapshot::SetHostTransform(INode& host, const TVL::CMatrix4& transform) {
    host.SetNodeTM(ticks, ToHost(transform));
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
