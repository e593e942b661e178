#pragma once

#include "host/types.h"
#include "nodes/max_node.h"
#include "nodes/shown_object.h"

// A camera's lens at one tick, read from and written to the host at each call. In animate mode a
// write becomes a key of the parameter's controller. Once the node is gone or shows another object,
// numbers read as 0 and writes do nothing.
// The order of the fields is part of the contract.
class CMAXNode::CMAXSnapshot_Lens final : public TVL::CoreNode::Snapshot_Lens,
                                          public OrphanedSnapshot {
  public:
    explicit CMAXSnapshot_Lens(CMAXNode& lender);

    void Acquire(const ShownObject& camera, double time);
    void Release() { acquired = false; }
    bool IsAcquired() const { return acquired; }

    // The node has died.
    void LoseNode();

    void SetFieldOfView(double degrees) override;
    double GetFieldOfView() override;
    int GetFieldOfViewType() override;
    void SetFieldOfViewType(int type) override;
    void SetTargetDistance(double hostUnits) override;
    double GetTargetDistance() override;
    double GetTime() override { return seconds; }
    TVL::CMatrix4 GetLensTransform() override { return TVL::CMatrix4::Identity(); }

  private:
    ShownObject hostObject;
    TimeValue ticks = 0;
    double seconds = 0;
};
