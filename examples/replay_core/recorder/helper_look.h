#pragma once

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

}  // namespace replay
