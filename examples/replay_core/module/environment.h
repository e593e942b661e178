#pragma once

#include <optional>
#include <string>

#include "replay_core/motion/pose.h"
#include "replay_core/recorder/frame_range.h"

namespace replay {

// What this Core is asked to do when its window is called for. A Core with a window of its own
// would have the user choose; this one reads its process's environment, so that nothing of it
// passes through the host. The variables are listed in README.md.
struct Request {
    std::string error;  // one line; empty if the environment makes sense

    std::string capture;
    double metresPerUnit = kCmuMetresPerUnit;
    std::optional<FrameRange> frames;  // all of them if not said
    std::string csv;                   // empty for none
    std::string report;                // empty for none
    std::optional<bool> optimisedControllers;
    bool showsProgress = false;
    std::optional<int> pressedButton;  // an option's, pressed in place of a recording
};

Request ReadEnvironment();

}  // namespace replay
