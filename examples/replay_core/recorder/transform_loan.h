#pragma once

#include "replay_core/recorder/snapshot_loan.h"
#include "tvl/snapshot.h"

namespace replay {

// A transform snapshot on loan. Empty if the host node is gone.
class TransformLoan : public SnapshotLoan<TVL::CSnapshot> {
  public:
    TransformLoan(TVL::CoreNode& node, double seconds)
        : SnapshotLoan(node, node.AcquireSnapshot(seconds), &TVL::CoreNode::ReleaseSnapshot) {}
};

}  // namespace replay
