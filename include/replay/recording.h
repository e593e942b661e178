#pragma once

#include <cmath>
#include <cstddef>
#include <string>

namespace replay {

// Seconds of the scene as a host is asked for them. It counts in whole ticks and drops what is
// over: a time that rounding has left a hair short of a tick would be taken for the one before, and
// of a capture whose frames lie on ticks some would miss theirs. A nanosecond more is far less than
// a tick, and more than rounding takes away within a day.
inline double HostSeconds(double seconds) {
    constexpr double kNanosecond = 1e-9;
    return seconds + std::copysign(kNanosecond, seconds);
}

// Frames of a capture as they are recorded into a take, at least one, and where they are in the
// scene.
struct Recording {
    std::string capture;         // its path
    double metresPerUnit = 1;    // of the capture
    double frameSeconds = 0;     // from one frame to the next, above 0
    std::size_t firstFrame = 0;  // counted from the start of the capture
    std::size_t endFrame = 0;    // behind the last one
    double startSeconds = 0;     // in the scene, of the capture's frame 0

    std::size_t FrameCount() const { return endFrame - firstFrame; }

    // In the scene.
    double Seconds(std::size_t frame) const {
        return startSeconds + static_cast<double>(frame) * frameSeconds;
    }
    double FirstSeconds() const { return Seconds(firstFrame); }
    double LastSeconds() const { return Seconds(endFrame - 1); }

    friend bool operator==(const Recording&, const Recording&) = default;
};

}  // namespace replay
