#pragma once

#include <vector>

#include "replay_core/motion/motion.h"
#include "replay_core/recorder/frame_range.h"
#include "replay_core/recorder/meant_poses.h"
#include "replay_core/recorder/object_scale.h"
#include "tvl/matrix4.h"
#include "tvl/node.h"

namespace replay {

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
