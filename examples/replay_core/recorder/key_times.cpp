#include "replay_core/recorder/key_times.h"

namespace replay {
namespace {

// What every host keeps apart, and for how long: milliseconds, for a day.
constexpr double kShortest = 0.001;
constexpr double kLongest = 24 * 60 * 60;

double HostTime(TVL::AdaptorInterface& adaptor, double seconds) {
    adaptor.SetCurrentTime(seconds);
    return adaptor.GetCurrentTime();
}

}  // namespace

std::size_t FramesWithoutKey(TVL::AdaptorInterface& adaptor, const Motion& motion,
                             const FrameRange& frames) {
    const bool areApart =
        motion.frameSeconds >= kShortest && FrameTime(motion, frames.end) <= kLongest;
    if (areApart) return 0;
    std::size_t without = 0;
    double before = HostTime(adaptor, FrameTime(motion, frames.first));
    for (std::size_t frame = frames.first + 1; frame < frames.end; ++frame) {
        const double time = HostTime(adaptor, FrameTime(motion, frame));
        if (time == before) ++without;
        before = time;
    }
    return without;
}

}  // namespace replay
