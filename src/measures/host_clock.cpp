#include "measures/host_clock.h"

#include "host/interface.h"
#include "host/time.h"
#include "measures/saturation.h"

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
