#pragma once

#include <cstddef>
#include <span>

#include "replay_core/motion/motion.h"
#include "tvl/matrix4.h"

namespace replay {

// Where the joints of a capture are, as matrices for row vectors (p' = p × M, a parent on the
// right) in the space of the Core contract: Y up, right-handed, metres. Rows have unit length.

// The CMU database's captures count in units of 1 / 0.45 inch.
inline constexpr double kCmuMetresPerUnit = 0.056444;

// From the joint to its parent, in one frame of its motion (see Motion::Frame). The turns are
// applied about the joint's own, already turned axes in the order of its channels: for Zrotation
// Yrotation Xrotation the matrix is Mx × My × Mz. A position channel gives its coordinate in place
// of the OFFSET's, at a root and at any other joint alike; without one the OFFSET's stands.
TVL::CMatrix4 LocalTransform(const Joint& joint, std::span<const double> frame,
                             double metresPerUnit);

// From each joint to the world, in `frame`, which is less than the motion's frame count. `world` is
// the caller's and has an element for each joint. Nothing is allocated.
void EvaluatePose(const Motion& motion, std::size_t frame, double metresPerUnit,
                  std::span<TVL::CMatrix4> world);

// From the lowest to the highest of the joints and the end sites of such a pose.
double HeightOf(const Motion& motion, double metresPerUnit, std::span<const TVL::CMatrix4> world);

}  // namespace replay
