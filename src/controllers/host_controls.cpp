#include "controllers/host_controls.h"

#include <algorithm>
#include <cstdint>
#include <limits>

#include "host/interface.h"
#include "host/time.h"

namespace {

constexpr std::int64_t kMostFrames = 1'000'000;

// The controller and its direct parts, as far as they have keys.
std::vector<Animatable*> Keyed(Control& source) {
    std::vector<Animatable*> keyed;
    if (source.NumKeys() > 0) keyed.push_back(&source);
    for (int i = 0; i < source.NumSubs(); ++i) {
        Animatable* const part = source.SubAnim(i);
        if (part && part->NumKeys() > 0) keyed.push_back(part);
    }
    return keyed;
}

// Empty if nothing has keys.
Interval KeyedRange(const std::vector<Animatable*>& keyed) {
    TimeValue first = std::numeric_limits<TimeValue>::max();
    TimeValue last = std::numeric_limits<TimeValue>::min();
    for (Animatable* one : keyed) {
        first = std::min(first, one->GetKeyTime(0));
        last = std::max(last, one->GetKeyTime(one->NumKeys() - 1));
    }
    return {first, last};
}

std::vector<TimeValue> KeyTimes(const std::vector<Animatable*>& keyed) {
    std::vector<TimeValue> times;
    for (Animatable* one : keyed) {
        for (int i = 0; i < one->NumKeys(); ++i)
            times.push_back(one->GetKeyTime(i));
    }
    std::sort(times.begin(), times.end());
    times.erase(std::unique(times.begin(), times.end()), times.end());
    return times;
}

}  // namespace

void EndUnlessReferredTo::operator()(Control* control) const {
    if (!control->HasDependents()) control->DeleteMe();
}

NewControl MakeControl(SClass_ID superClass, Class_ID classId) {
    return NewControl(
        static_cast<Control*>(GetCOREInterface()->CreateInstance(superClass, classId)));
}

std::vector<TimeValue> SamplingTimes(Control& source) {
    const std::vector<Animatable*> keyed = Keyed(source);
    const Interval range = KeyedRange(keyed);
    if (range.Empty()) return {};

    const std::int64_t step = std::max(1, GetTicksPerFrame());
    const std::int64_t frames = (std::int64_t{range.End()} - range.Start()) / step + 1;
    if (frames > kMostFrames) return KeyTimes(keyed);
    std::vector<TimeValue> times;
    times.reserve(static_cast<std::size_t>(frames));
    for (std::int64_t frame = 0; frame < frames; ++frame)
        times.push_back(static_cast<TimeValue>(range.Start() + frame * step));
    return times;
}
