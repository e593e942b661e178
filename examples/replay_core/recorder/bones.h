#pragma once

#include <vector>

#include "replay_core/motion/body_part.h"
#include "replay_core/motion/motion.h"
#include "replay_core/recorder/helper_look.h"
#include "tvl/mesh.h"

namespace replay {

// The look of each joint, in the motion's order: a bone, thick near the joint and pointed at the
// far end, to each of its children and to the tip of its chain; a small mark where that leaves
// nothing. A joint's object space has its own axes and is in host units, so a child's OFFSET times
// `hostUnitsPerCaptureUnit` is where the child's bone ends.
std::vector<TVL::CMesh> BoneMeshes(const Motion& motion, double hostUnitsPerCaptureUnit,
                                   double hostUnitsPerMetre);

// The left blue, the right orange, the middle light.
Colour ColourOf(BodySide side);

}  // namespace replay
