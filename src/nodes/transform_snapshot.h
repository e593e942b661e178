#pragma once

#include "host/types.h"
#include "nodes/max_node.h"

// Where a node is at one tick, read from and written to the host at each call. Once the host node
// is gone, transforms read as the identity and writes do nothing.
// The order of the fields is part of the contract.
class CMAXNode::CMAXSnapshot final : public TVL::CoreNode::Snapshot, public OrphanedSnapshot {
  public:
    explicit CMAXSnapshot(CMAXNode& lender);

    void Acquire(CMAXNode& lender, double time);
    void Release() { acquired = false; }
    bool IsAcquired() const { return acquired; }

    // The node has died.
    void LoseNode();

    // The world transform, for the adaptor's own rooms, which hear what the host throws.
    TVL::CMatrix4 World() const;
    void PutWorld(const TVL::CMatrix4& transform);

    void SetLocalTransform(const TVL::CMatrix4& transform) override;
    TVL::CMatrix4 GetLocalTransform() override;
    TVL::CMatrix4 GetWorldTransform() override;
    void SetWorldTransform(const TVL::CMatrix4& transform) override;
    double GetTime() override { return seconds; }

  private:
    TVL::CMatrix4 LocalBase(INode& host) const;
    TVL::CMatrix4 HostTransform(INode& host) const;
    void SetHostTransform(INode& host, const TVL::CMatrix4& transform);

    TimeValue ticks = 0;
    double seconds = 0;
    HostNodeLink hostNode;
};
