#pragma once

#include <span>

#include "replay_core/recorder/geometry.h"
#include "tvl/matrix4.h"
#include "tvl/node.h"

namespace replay {

// A ball around the joints of a pose, in metres.
struct Surround {
    Vector3 centre{};
    double radius = 0;
};

Surround SurroundOf(std::span<const TVL::CMatrix4> pose);

// How many metres away from a camera the ball fits into its field of view, with a margin.
double DistanceToSee(const Surround& subject, double fieldOfViewDegrees);

inline constexpr double kUsualFieldOfViewDegrees = 45;

// Puts a new free camera level in front of what it is to show, along the axis Z, as far away as its
// field of view takes, and its target into the middle. From then on the field of view is measured
// across the height, the shorter way in most pictures.
void PlaceCamera(TVL::CoreNode& camera, const Surround& subject, double seconds);

}  // namespace replay
