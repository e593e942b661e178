#include "replay_core/recorder/host_time.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace replay {
namespace {

// What every host keeps apart, and for how long: milliseconds, for a day.
constexpr double kShortest = 0.001;
constexpr double kLongest = 24 * 60 * 60;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

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
    double before = kInfinity;
    for (std::size_t frame = recording.firstFrame; frame < recording.endFrame; ++frame) {
        const double time = HostTime(adaptor, recording.Seconds(frame));
        const bool isElsewhere = std::abs(time - recording.Seconds(frame)) > kShortest;
        if (time == before || isElsewhere) ++without;
        before = time;
    }
    return without;
}

void SetRange(TVL::AdaptorInterface& adaptor, std::span<const Recording> recordings,
              SceneRange range) {
    if (range == SceneRange::kStays || recordings.empty()) return;
    constexpr double kRounding = 1e-6;  // of a frame
    const double rate = adaptor.GetFrameRate();
    auto [first, last] = range == SceneRange::kGrows ? adaptor.GetAnimationRange()
                                                     : std::pair(kInfinity, -kInfinity);
    for (const Recording& recording : recordings) {
        const double start = std::floor(recording.FirstSeconds() * rate + kRounding) / rate;
        const double end = std::ceil(recording.LastSeconds() * rate - kRounding) / rate;
        first = std::min(first, start);
        last = std::max({last, end, start + 1 / rate});  // a moment is no range
    }
    adaptor.SetAnimationRange({HostSeconds(first), HostSeconds(last)});
}

}  // namespace replay
