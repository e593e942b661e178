#pragma once

#include <span>
#include <vector>

#include "replay_core/motion/motion.h"
#include "replay_core/recorder/geometry.h"
#include "replay_core/recorder/meant_poses.h"
#include "replay_core/recorder/transform_parts.h"
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

// What a free camera is to be in one frame.
struct CameraMoment {
    TVL::CMatrix4 pose{};  // in Core space, metres; rows of unit length
    double fieldOfViewDegrees = 0;
    double targetDistance = 0;  // host units
};

// The way of a camera that follows a take, a moment for each frame. It goes along with the middle
// of the figure, evened out over half a second to either side, and looks at it from the front, the
// side and above. The field of view takes in every joint in every frame, and does not jump. The
// target is as far ahead as the middle of the figure.
std::vector<CameraMoment> FollowTake(const Motion& motion, FrameRange frames, MeantPoses& poses,
                                     double hostUnitsPerMetre);

// Inside a recording all of it becomes keys.
void WriteMoment(TVL::CoreNode& camera, const CameraMoment& moment, const ObjectScale& scale,
                 double seconds);

// To be called when the last moment has been written, with its time. A lens answers for the time at
// which it was read last with what it was given last, whatever time that was for; read at the last
// time it answers for every time with what was written there.
void SettleLens(TVL::CoreNode& camera, double lastSeconds);

}  // namespace replay
