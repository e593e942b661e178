#include "measures/host_clock.h"

#include <cmath>
#include <limits>

#include "host/interface.h"
#include "host/time.h"

namespace {

TimeValue Truncated(double ticks) {
    constexpr TimeValue kFirst = std::numeric_limits<TimeValue>::min();
    constexpr TimeValue kLast = std::numeric_limits<TimeValue>::max();
    if (std::isnan(ticks)) return 0;
    if (ticks <= kFirst) return kFirst;
    if (ticks >= kLast) return kLast;
    return static_cast<TimeValue>(ticks);
}

}  // namespace

int TicksPerSecond() {
    return GetTicksPerFrame() * GetFrameRate();
}

TimeValue SnapshotTicks(double seconds) {
    return Truncated(GetTicksPerFrame() * (GetFrameRate() * seconds));
}

TimeValue HostTicks(double seconds) {
    return Truncated(seconds * TicksPerSecond());
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
