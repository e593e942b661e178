#pragma once

#include <cstddef>
#include <string>

namespace replay {

// Where the keys of a take come from: some frames of a capture, as they were recorded.
struct Recording {
    std::string capture;         // its path
    double metresPerUnit = 1;    // of the capture
    double frameSeconds = 0;     // from one frame to the next
    std::size_t firstFrame = 0;  // counted from the start of the capture
    std::size_t endFrame = 0;    // behind the last one

    friend bool operator==(const Recording&, const Recording&) = default;
};

}  // namespace replay
