#pragma once

#include <string>

#include "replay_core/motion/motion.h"
#include "replay_core/recorder/frame_range.h"
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
    double metresPerUnit = 1;
    FrameRange frames;  // of the capture
    bool showsProgress = false;
};

struct RecordedTake {
    std::string error;  // one line; empty if the whole range was recorded

    // The frames that are in the scene now. After a stop these are the ones before it, and `error`
    // says so; after any other error there are none, and the scene is as it was.
    FrameRange frames;
    TakeNodes nodes;
};

// Seconds from the start of the capture to a frame.
double FrameTime(const Motion& motion, std::size_t frame);

// Records frames of the motion onto the take's nodes, which are made where they are missing: one
// undo step, "Record <take>", and a key for each joint and frame. The host's time goes to the first
// of the frames. When `state` asks for a stop, no node is touched any more.
RecordedTake RecordTake(TVL::AdaptorInterface& adaptor, const Motion& motion, Take& take,
                        const RecordSettings& settings, RecordingState& state);

}  // namespace replay
