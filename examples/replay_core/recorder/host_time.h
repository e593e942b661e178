#pragma once

#include <cstddef>

#include "replay/recording.h"
#include "tvl/adaptor_interface.h"

// The host's time, and the frames of a recording in it.
namespace replay {

void GoTo(TVL::AdaptorInterface& adaptor, double seconds);

// How many of the frames the host has at the very time of the frame before, since it works in whole
// ticks and its time has an end: of such frames only the last one keeps a key. Where that can be,
// the host's time goes through the frames.
std::size_t FramesWithoutKey(TVL::AdaptorInterface& adaptor, const Recording& recording);

// Has the scene's range reach, in whole frames of the host's, over all of the recording. It only
// grows, so that nothing else falls out of it. To be called in the undo group of the recording,
// with which the host takes it back.
void HoldInRange(TVL::AdaptorInterface& adaptor, const Recording& recording);

}  // namespace replay
