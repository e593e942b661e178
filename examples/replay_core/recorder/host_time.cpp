#include "replay_core/recorder/host_time.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace replay {
namespace {

// What every host keeps apart, and for how long: milliseconds, for a day.
constexpr double kShortest = 0.001;
constexpr double kLongest = 24 * 60 * 60;

double HostTime(TVL::AdaptorInterface& adaptor, double seconds) {
    GoTo(adaptor, seconds);
    return adaptor.GetCurrentTime();
}

bool AreApart(const Recording& recording) {
    return recording.frameSeconds >= kShortest && std::abs(recording.FirstSeconds()) <= kLongest &&
           std::abs(recording.LastSeconds()) <= kLongest;
}

}  // namespace

void GoTo(TVL::AdaptorInterface& adaptor, double seconds) {
    adaptor.SetCurrentTime(HostSeconds(seconds));
}

std::size_t FramesWithoutKey(TVL::AdaptorInterface& adaptor, const Recording& recording) {
    if (AreApart(recording)) return 0;
    std::size_t without = 0;
    double before = HostTime(adaptor, recording.FirstSeconds());
    for (std::size_t frame = recording.firstFrame + 1; frame < recording.endFrame; ++frame) {
        const double time = HostTime(adaptor, recording.Seconds(frame));
        if (time == before) ++without;
        before = time;
    }
    return without;
}

void HoldInRange(TVL::AdaptorInterface& adaptor, const Recording& recording) {
    constexpr double kRounding = 1e-6;  // of a frame
    const double rate = adaptor.GetFrameRate();
    const double first = std::floor(recording.FirstSeconds() * rate + kRounding) / rate;
    const double last = std::ceil(recording.LastSeconds() * rate - kRounding) / rate;
    const std::pair<double, double> range = adaptor.GetAnimationRange();
    if (range.first <= first && last <= range.second) return;
    adaptor.SetAnimationRange(
        {HostSeconds(std::min(range.first, first)), HostSeconds(std::max(range.second, last))});
}

}  // namespace replay
