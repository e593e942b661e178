#pragma once

#include <array>
#include <string_view>

#include "tvl/matrix4.h"

// A rotation as three turns about axes, as files of captures hold it.
namespace interchange {

// The turns of a joint about three different axes, the first one outermost: the joint is turned
// about its own axes, already turned by those ahead, one after the other.
struct TurnOrder {
    // `axes` are the letters X, Y and Z, each once.
    explicit TurnOrder(std::string_view axes);

    int outer, middle, inner;  // 0 for x, 1 for y, 2 for z
};

using Turns = std::array<double, 3>;  // degrees, in the order

// A rotation about one axis, for row vectors: counter-clockwise when seen from the axis's far end.
TVL::CMatrix4 TurnAbout(int axis, double degrees);

// From the joint to its parent.
TVL::CMatrix4 RotationOf(const TurnOrder& order, const Turns& turns);

// Of a unit quaternion x, y, z, w.
TVL::CMatrix4 RotationOf(const std::array<double, 4>& quaternion);

// The turns that make `rotation`, of which the axes alone are read: at right angles, of unit length
// and right-handed. Each is rounded to whole `step`s of a degree, and makes up for what the
// rounding of those before it has cost. Of all turns that do, these are the nearest to `before`, so
// that they run on from frame to frame: beyond half a turn, and through places where the outer and
// the inner axis meet and only the sum of their turns is told.
Turns TurnsOf(const TVL::CMatrix4& rotation, const TurnOrder& order, double step,
              const Turns& before);

}  // namespace interchange
