#pragma once

#include "replay_core/recorder/snapshot_loan.h"
#include "tvl/snapshot.h"

namespace replay {

// A lens snapshot on loan. Empty if the node is no camera.
class LensLoan : public SnapshotLoan<TVL::CSnapshot_Lens> {
  public:
    LensLoan(TVL::CoreNode& node, double seconds)
        : SnapshotLoan(node, node.AcquireLensSnapshot(seconds),
                       &TVL::CoreNode::ReleaseLensSnapshot) {}
};

}  // namespace replay
