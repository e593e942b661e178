#pragma once

#include <optional>

#include "replay_core/motion/capture_text.h"
#include "replay_core/motion/motion.h"
#include "replay_core/motion/read_error.h"

namespace replay {

// Reads the second half of a capture, what follows the word MOTION: the number of frames, the time
// from one to the next, and a line of numbers for each frame. The joints of `motion` are there.
std::optional<ReadError> ReadFrames(CaptureText& text, Motion& motion);

}  // namespace replay
