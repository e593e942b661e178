#include "command/core_space.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "command/exit_status.h"
#include "command/output.h"
#include "host/time.h"
#include "host/units.h"
#include "replay/recording.h"

namespace headless {
namespace {

float Narrowed(double number) {
    constexpr double kMost = std::numeric_limits<float>::max();
    return static_cast<float>(std::clamp(number, -kMost, kMost));
}

}  // namespace

Point3 InHost(const CorePlace& place) {
    const double units = 1 / GetMasterScale(UNITS_METERS);  // in a metre
    return {Narrowed(units * place.x), Narrowed(-units * place.z), Narrowed(units * place.y)};
}

CorePlace InCore(const PositionView& place) {
    const double metres = GetMasterScale(UNITS_METERS);  // in a unit
    return {metres * double{place.x}, metres * double{place.z}, -metres * double{place.y}};
}

double MetresBetween(const CorePlace& a, const CorePlace& b) {
    return std::hypot(a.x - b.x, a.y - b.y, a.z - b.z);
}

TimeValue NearestTime(double ticks) {
    constexpr double kMost = std::numeric_limits<TimeValue>::max();
    return static_cast<TimeValue>(std::clamp(std::round(ticks), -kMost, kMost));
}

TimeValue AtSeconds(double seconds) {
    return NearestTime(GetTicksPerFrame() * (GetFrameRate() * replay::HostSeconds(seconds)));
}

TimeValue CheckedTime(double seconds) {
    const TimeValue time = AtSeconds(seconds);
    if (std::abs(double{1} * time) >= double{std::numeric_limits<TimeValue>::max()})
        throw Failure(Plain(seconds) + " s is beyond what the host can count");
    return time;
}

}  // namespace headless
