#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace replay {

// Evenly spaced times, in seconds.
struct SampleTimes {
    double At(std::size_t index) const { return start + static_cast<double>(index) * step; }

    double start = 0;
    double step = 1;        // above 0
    std::size_t count = 1;  // at least 1, at most kMostSampleTimes
};

// More is a slip of the hand: a day at 100 frames a second.
inline constexpr std::size_t kMostSampleTimes = 10'000'000;

// Reads START:END:STEP: the times START, START + STEP and so on up to END. The last one may pass
// END by a millionth of a step, so that no rounding loses it. Nothing if that makes no sense or
// makes too many.
std::optional<SampleTimes> ParseSampleTimes(std::string_view text);

}  // namespace replay
