#pragma once

#include <array>

#include "tvl/matrix4.h"
#include "tvl/node.h"

namespace replay {

// A node's object space is in host units, and a world transform leads from there to metres. Its
// rows therefore have the length of one host unit in metres (times whatever the user scaled the
// node by). A pose that is given in metres throughout has to take that length over, or the node
// comes out scaled.
struct ObjectScale {
    std::array<double, 3> rowLengths{1, 1, 1};
};

// The node's at that time.
ObjectScale ObjectScaleOf(TVL::CoreNode& node, double seconds);

// From a node that nobody has scaled.
double HostUnitsPerMetre(TVL::CoreNode& node, double seconds);

// The pose with its rows, but not its place, scaled.
TVL::CMatrix4 WithObjectScale(TVL::CMatrix4 pose, const ObjectScale& scale);

}  // namespace replay
