#include "headless/scene/time_and_units.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>
#include <vector>

#include "headless/breaches/breach_book.h"
#include "headless/hold/undo_stream.h"
#include "headless/scene/listeners.h"
#include "host/units.h"

namespace headless {
namespace {

constexpr int kFramesAtStart = 100;
constexpr int kMost = std::numeric_limits<TimeValue>::max();

struct Timeline {
    int frameRate = 30;
    int ticksPerFrame = 160;
    TimeValue now = 0;
    Interval range;
    Listeners<TimeChangeCallback*> callbacks;
};
Timeline timeline;

constexpr double kInchesPerMetre = 39.37;

// How many of each type make a metre.
constexpr std::array<double, 7> kPerMetre{
    kInchesPerMetre, kInchesPerMetre / 12, kInchesPerMetre / 63360, 1000, 100, 1, 0.001,
};

double PerMetre(int type) {
    return kPerMetre[static_cast<std::size_t>(type)];
}

struct MasterUnits {
    MasterUnits(int unitType, float unitScale) : type(unitType), scale(unitScale) {
        for (std::size_t other = 0; other < sizes.size(); ++other)
            sizes[other] = static_cast<double>(scale) * kPerMetre[other] / PerMetre(type);
    }

    int type;
    float scale;
    std::array<double, kPerMetre.size()> sizes;  // of a host unit, in each type
};
MasterUnits masterUnits(0, 1);

}  // namespace

void TellTime() {
    const HostEvent event("a change of time");
    timeline.callbacks.Tell(
        [](TimeChangeCallback* callback) { callback->TimeChanged(timeline.now); });
}

void StartTimeline(int frameRate, int ticksPerFrame) {
    const int ticks = std::clamp(ticksPerFrame, 1, kMost / kFramesAtStart);
    const int rate = std::clamp(frameRate, 1, kMost / ticks);
    RestoreTimeline(rate, ticks, {0, kFramesAtStart * ticks}, 0);
}

bool IsClock(int frameRate, int ticksPerFrame) {
    return frameRate > 0 && ticksPerFrame > 0 && ticksPerFrame <= kMost / kFramesAtStart &&
           frameRate <= kMost / ticksPerFrame;
}

void RestoreTimeline(int frameRate, int ticksPerFrame, Interval range, TimeValue now) {
    timeline.frameRate = frameRate;
    timeline.ticksPerFrame = ticksPerFrame;
    timeline.range = range;
    timeline.now = now;
}

TimeValue CurrentTime() {
    return timeline.now;
}

void MoveTime(TimeValue t) {
    if (std::exchange(timeline.now, t) != t) TellTime();
}

Interval AnimationRange() {
    return timeline.range;
}

void SetAnimationRange(Interval range) {
    if (range.Empty() || range == timeline.range) return;
    Undoably([other = range]() mutable { std::swap(timeline.range, other); });
}

void AddTimeCallback(TimeChangeCallback* callback) {
    if (callback) timeline.callbacks.Add(callback);
}

void RemoveTimeCallback(TimeChangeCallback* callback) {
    timeline.callbacks.Remove(callback);
}

void ForgetTimeCallbacks() {
    timeline.callbacks.Forget();
}

bool IsUnitType(int type) {
    return type >= 0 && type < static_cast<int>(kPerMetre.size());
}

double MetresPerUnit(int type, float scale) {
    return static_cast<double>(scale) / PerMetre(type);
}

void SetMasterUnits(int type, float scale) {
    if (IsUnitType(type) && std::isfinite(scale) && scale > 0) masterUnits = {type, scale};
}

}  // namespace headless

TimeChangeCallback::~TimeChangeCallback() = default;

int GetTicksPerFrame() {
    return headless::timeline.ticksPerFrame;
}
int GetFrameRate() {
    return headless::timeline.frameRate;
}

void GetMasterUnitInfo(int* type, float* scale) {
    if (type) *type = headless::masterUnits.type;
    if (scale) *scale = headless::masterUnits.scale;
}

double GetMasterScale(int type) {
    using namespace headless;
    if (!IsUnitType(type)) return 1;
    return masterUnits.sizes[static_cast<std::size_t>(type)];
}
