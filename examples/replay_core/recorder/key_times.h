#pragma once

#include <cstddef>

#include "replay_core/motion/motion.h"
#include "replay_core/recorder/frame_range.h"
#include "tvl/adaptor_interface.h"

namespace replay {

// How many of the frames the host has at the very time of the frame before, since it works in whole
// ticks and its time has an end: of such frames only the last one keeps a key. Where that can be,
// the host's time goes through the frames.
std::size_t FramesWithoutKey(TVL::AdaptorInterface& adaptor, const Motion& motion,
                             const FrameRange& frames);

}  // namespace replay
