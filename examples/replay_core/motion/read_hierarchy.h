#pragma once

#include <optional>

#include "replay_core/motion/capture_text.h"
#include "replay_core/motion/motion.h"
#include "replay_core/motion/read_error.h"

namespace replay {

// Reads the first half of a capture, from HIERARCHY through the word MOTION, into the joints, end
// sites and channel count of `motion`.
std::optional<ReadError> ReadHierarchy(CaptureText& text, Motion& motion);

}  // namespace replay
