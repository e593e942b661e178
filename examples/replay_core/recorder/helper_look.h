#pragma once

#include <vector>

#include "replay_core/motion/body_part.h"
#include "replay_core/motion/motion.h"
#include "replay_core/recorder/geometry.h"
#include "tvl/mesh.h"
#include "tvl/node.h"

namespace replay {

struct Colour {
    float red;  // each from 0 to 1
    float green;
    float blue;
};

// Gives a guide object its geometry and its colour. What it looked like before does not come back
// by undo, so only a node that is new within the undo group may be dressed, as its look comes and
// goes with it.
void DressNode(TVL::CoreNode& node, const TVL::CMesh& mesh, const Colour& colour);

// A solid of eight faces, all looking outward: from `start` it widens to four corners around
// `waist`, `side` and `front` away from there either way, and ends in `tip`. Side, front and the
// way from start to tip are a right-handed system.
struct Spike {
    Vector3 start;
    Vector3 waist;
    Vector3 side;
    Vector3 front;
    Vector3 tip;
};

void AddSpike(TVL::CMesh& mesh, const Spike& spike);

// The look of each joint, in the motion's order: a bone, thick near the joint and pointed at the
// far end, to each of its children and to the tip of its chain; a small mark where that leaves
// nothing. A joint's object space has its own axes and is in host units, so a child's OFFSET times
// `hostUnitsPerCaptureUnit` is where the child's bone ends.
std::vector<TVL::CMesh> BoneMeshes(const Motion& motion, double hostUnitsPerCaptureUnit,
                                   double hostUnitsPerMetre);

// The left blue, the right orange, the middle light.
Colour ColourOf(BodySide side);

}  // namespace replay
