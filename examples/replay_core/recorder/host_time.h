#pragma once

#include <cstddef>
#include <span>

#include "replay/recording.h"
#include "tvl/adaptor_interface.h"

// The host's time, and the frames of a recording in it.
namespace replay {

void GoTo(TVL::AdaptorInterface& adaptor, double seconds);

// How many of the frames the host has at the very time of the frame before or elsewhere, since it
// works in whole ticks and its time has an end: of such frames the last one at most keeps a key.
// Where that can be, the host's time goes through the frames.
std::size_t FramesWithoutKey(TVL::AdaptorInterface& adaptor, const Recording& recording);

// What becomes of the scene's range of time: nothing, or it holds what was recorded, in whole
// frames of the host's, and either all that it held before or, in a scene that has nothing else, no
// more than that.
enum class SceneRange { kStays, kGrows, kFits };

// To be called in the undo group of the recordings, with which the host takes it back.
void SetRange(TVL::AdaptorInterface& adaptor, std::span<const Recording> recordings,
              SceneRange range);

}  // namespace replay
