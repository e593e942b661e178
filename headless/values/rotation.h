#pragma once

#include "host/quat.h"

namespace headless {

// As matrices for row vectors: first `a`, then `b`.
Quat Then(const Quat& a, const Quat& b);

Quat Opposite(const Quat& q);

// Along the shorter arc; `f` from 0 at `a` to 1 at `b`. Worked out in double (K. Shoemake,
// Animating Rotation with Quaternion Curves, 1985).
Quat Slerp(const Quat& a, const Quat& b, double f);

}  // namespace headless
