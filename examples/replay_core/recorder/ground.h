#pragma once

#include "replay_core/motion/motion.h"
#include "replay_core/recorder/frame_range.h"
#include "replay_core/recorder/meant_poses.h"
#include "replay_core/recorder/progress_bar.h"
#include "tvl/node.h"

namespace replay {

// The least lift for each frame that brings every foot, and the tip of every foot, onto the ground:
// none where all are on or above it. What counts as ground is the first surface below the highest
// joint of the pose, so that a figure steps onto what it would stand in; where there is none, such
// as beyond the edge, the figure stays as it is.
// To be called inside the recording, so that the adaptor has the host convert the ground once for
// all frames, unless the option of dynamic meshes wants it as it is in each.
Lifts LiftsOnto(TVL::CoreNode& ground, const Motion& motion, FrameRange frames,
                double metresPerUnit, ProgressBar& progress);

}  // namespace replay
