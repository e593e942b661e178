#include "measures/host_clock.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "host/interface.h"
#include "host/time.h"

std::int32_t TruncatedToInt32(double value) {
    constexpr double kLowest = std::numeric_limits<std::int32_t>::min();
    constexpr double kHighest = std::numeric_limits<std::int32_t>::max();
    if (std::isnan(value)) return 0;
    return static_cast<std::int32_t>(std::clamp(value, kLowest, kHighest));
}

int TicksPerSecond() {
    return GetTicksPerFrame() * GetFrameRate();
}

TimeValue SnapshotTicks(double seconds) {
    return TruncatedToInt32(GetTicksPerFrame() * (GetFrameRate() * seconds));
}

TimeValue HostTicks(double seconds) {
    return TruncatedToInt32(seconds * TicksPerSecond());
}

double SecondsOf(TimeValue ticks) {
    return static_cast<double>(ticks) / static_cast<double>(TicksPerSecond());
}

double CurrentSeconds() {
    return SecondsOf(GetCOREInterface()->GetTime());
}

void SetCurrentSeconds(double seconds) {
    GetCOREInterface()->SetTime(HostTicks(seconds), true);
}

std::pair<double, double> AnimationRangeSeconds() {
    const Interval range = GetCOREInterface()->GetAnimRange();
    return {SecondsOf(range.Start()), SecondsOf(range.End())};
}

void SetAnimationRangeSeconds(double first, double last) {
    GetCOREInterface()->SetAnimRange(Interval(HostTicks(first), HostTicks(last)));
}
