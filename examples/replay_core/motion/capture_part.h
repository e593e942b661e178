#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "replay_core/motion/motion.h"

namespace replay {

// A place in a capture: one of its frames, counted from 0, or seconds from its start.
struct CaptureMoment {
    double number = 0;  // 0 or more
    bool isSeconds = false;
};

// Reads "120", a frame, or "2.5s". Nothing if it is neither.
std::optional<CaptureMoment> ParseMoment(std::string_view text);

// Both ends are of the part. Without an end it goes as far as the capture.
struct CapturePart {
    std::optional<CaptureMoment> from;
    std::optional<CaptureMoment> to;
};

// The frames of the part, or in one line why there are none, without the capture's name. A time
// that rounding has left beside a frame is that frame's.
std::variant<FrameRange, std::string> FramesOf(const CapturePart& part, const Motion& motion);

}  // namespace replay
