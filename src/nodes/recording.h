#pragma once

#include <cstdint>
#include <vector>

#include "tvl/core_element.h"

// A recording puts the host into animate mode, so that what the Core writes through snapshots
// becomes keys. One that begins inside another belongs to it: the mode goes back with the last to
// end.
struct RecordingState {
    bool wasAnimating = false;  // the host's animate mode when the recording began
    int depth = 0;              // begun and not ended yet
};

// The adaptor's recording.
RecordingState& RecordingInProgress();

// Opens a recording and gives every recordable node of these owners a key of its present pose at
// the current time. All three give the status 0.
std::int32_t BeginRecording(const std::vector<TVL::CoreElement*>& owners);

// Opens a recording without keys to start from.
std::int32_t BeginRecordingUnkeyed();

// Puts animate mode back as it was, once none is open, and frees the meshes that were converted
// meanwhile.
std::int32_t EndRecording();
