#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "replay/recording.h"
#include "replay_core/motion/motion.h"
#include "replay_core/recorder/host_time.h"
#include "replay_core/recorder/meant_poses.h"
#include "replay_core/recorder/take_camera.h"
#include "replay_core/recorder/take_nodes.h"
#include "replay_core/state/take.h"
#include "tvl/adaptor_interface.h"

namespace replay {

// What the adaptor may ask, or want, while a recording runs: it calls back from inside the
// recording's own calls.
struct RecordingState {
    bool isRunning = false;
    bool stopRequested = false;
};

struct RecordSettings {
    TVL::CoreNode* ground = nullptr;  // on which feet are held, the caller's; null for none
    bool followsWithCamera = false;   // else a new camera is placed once, and any other stays
    SceneRange range = SceneRange::kGrows;
    bool showsProgress = false;
};

// What is to be recorded: some frames of a capture onto a take.
struct PlannedTake {
    Recording recording;
    Motion motion;
    Take* take = nullptr;
    bool replaces = false;           // leaves nothing of what the take was before
    TVL::CoreNode* guide = nullptr;  // the shape that a guide object goes along; null for none
};

struct RecordedTake {
    // With the frames that are in the scene now, all that were planned unless something went wrong.
    Recording recording;
    TakeNodes nodes;
    bool isInterrupted = false;  // by Ctrl-C, which is asked for after each frame

    std::size_t framesWithoutKey = 0;  // which the host has elsewhere, or as another

    // What was meant beyond the capture itself, for each frame that was planned.
    Lifts lifts;
    std::vector<CameraMoment> camera;  // empty if it did not follow
};

struct RecordedTakes {
    // One line; empty if everything was recorded. After a stop the frames before it are in the
    // scene, and this says so; after any other error, or if Ctrl-C stopped it before it had a
    // frame, there are none, and the scene is as it was.
    std::string error;

    std::vector<RecordedTake> takes;  // with frames in the scene, the first of what was planned
};

// Records all that is planned, one take after the other, onto their nodes, which are made where
// they are missing: one undo step, with a key for each joint and frame. Each take notes what it was
// recorded from. The host's time goes to the first frame of each. When `state` asks for a stop, no
// node is moved any more.
RecordedTakes RecordTakes(TVL::AdaptorInterface& adaptor, std::span<const PlannedTake> plan,
                          const RecordSettings& settings, RecordingState& state);

}  // namespace replay
