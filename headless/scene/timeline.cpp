#include "headless/scene/timeline.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <utility>
#include <vector>

#include "headless/breaches/breach_book.h"
#include "headless/objects/undoable.h"

namespace headless {
namespace {

constexpr int kFramesAtStart = 100;

struct Timeline {
    int frameRate = 30;
    int ticksPerFrame = 160;
    TimeValue now = 0;
    Interval range;
    std::vector<TimeChangeCallback*> callbacks;  // null: taken out while being told
    int telling = 0;
};
Timeline timeline;

void DropGoneListeners() {
    if (timeline.telling == 0) std::erase(timeline.callbacks, nullptr);
}

}  // namespace

void TellTime() {
    const HostEvent event("a change of time");
    ++timeline.telling;
    const std::size_t present = timeline.callbacks.size();
    for (std::size_t i = 0; i < present; ++i) {
        if (TimeChangeCallback* callback = timeline.callbacks[i])
            callback->TimeChanged(timeline.now);
    }
    --timeline.telling;
    DropGoneListeners();
}

void StartTimeline(int frameRate, int ticksPerFrame) {
    timeline.frameRate = std::max(1, frameRate);
    timeline.ticksPerFrame = std::max(1, ticksPerFrame);
    timeline.now = 0;
    timeline.range.Set(0, kFramesAtStart * timeline.ticksPerFrame);
}

bool IsClock(int frameRate, int ticksPerFrame) {
    constexpr int kMost = std::numeric_limits<TimeValue>::max();
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
    auto& callbacks = timeline.callbacks;
    if (callback && std::find(callbacks.begin(), callbacks.end(), callback) == callbacks.end())
        callbacks.push_back(callback);
}

void RemoveTimeCallback(TimeChangeCallback* callback) {
    std::replace(timeline.callbacks.begin(), timeline.callbacks.end(), callback,
                 static_cast<TimeChangeCallback*>(nullptr));
    DropGoneListeners();
}

void ForgetTimeCallbacks() {
    std::fill(timeline.callbacks.begin(), timeline.callbacks.end(), nullptr);
    DropGoneListeners();
}

}  // namespace headless

TimeChangeCallback::~TimeChangeCallback() = default;

int GetTicksPerFrame() {
    return headless::timeline.ticksPerFrame;
}
int GetFrameRate() {
    return headless::timeline.frameRate;
}
