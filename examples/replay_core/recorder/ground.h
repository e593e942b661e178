#pragma once

#include <optional>
#include <string>

#include "replay_core/motion/motion.h"
#include "replay_core/recorder/frame_range.h"
#include "replay_core/recorder/geometry.h"
#include "replay_core/recorder/meant_poses.h"
#include "replay_core/recorder/snapshot_loan.h"
#include "tvl/node.h"
#include "tvl/snapshot.h"

namespace replay {

// The surface of a scene node as it is at a moment, in Core space. A mesh snapshot is lent for as
// long as this lives, so it ends before a recording does. It is the adaptor that keeps a mesh which
// the host had to convert from one moment to the next, and only the option of dynamic meshes has it
// converted anew.
class GroundAt {
  public:
    GroundAt(TVL::CoreNode& node, double seconds);

    // How high the first surface straight below a place is, in metres; empty if there is none.
    std::optional<double> HeightBelow(const Vector3& place) const;

  private:
    SnapshotLoan<TVL::CSnapshot_Mesh> mesh_;
    TVL::CMatrix4 toWorld_;
    TVL::CMatrix4 toObject_;
};

// The least lift for each frame that brings every foot, and the tip of every foot, onto the ground:
// none where all are on or above it. What counts as ground is the first surface below the highest
// joint of the pose, so that a figure steps onto what it would stand in; where there is none, such
// as beyond the edge, the figure stays as it is.
Lifts LiftsOnto(TVL::CoreNode& ground, const Motion& motion, FrameRange frames,
                double metresPerUnit);

}  // namespace replay
