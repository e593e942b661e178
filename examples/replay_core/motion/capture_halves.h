#pragma once

#include <optional>

#include "replay_core/motion/capture_text.h"
#include "replay_core/motion/motion.h"

namespace replay {

// Reads the first half of a capture, from HIERARCHY through the word MOTION, into the joints, end
// sites and channel count of `motion`.
std::optional<ReadError> ReadHierarchy(CaptureText& text, Motion& motion);

// What to do with a capture that holds fewer frames than it announces.
enum class CutCapture { kRefused, kTaken };

// Reads the second half of a capture, what follows the word MOTION: the number of frames, the time
// from one to the next, and a line of numbers for each frame, of which there may be more than were
// announced. Only the last line may be no whole frame; it is left out if enough others are there.
// The joints of `motion` are there.
std::optional<ReadError> ReadFrames(CaptureText& text, Motion& motion, CutCapture cut);

}  // namespace replay
