#pragma once

#include "host/control.h"

namespace headless {

// What the packet makes of a matrix relative to the parent. A move, rotation or scale is done in
// the axis system, whose matrix stands in the world; a command that does not exist changes nothing.
Matrix3 Apply(const SetXFormPacket& packet, const Matrix3& local);

}  // namespace headless
