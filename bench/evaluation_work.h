#pragma once

#include <vector>

#include "bench/bench_world.h"
#include "bench/meter.h"
#include "bench/tracks.h"

// A take of one node below a parent that stands somewhere, and the times at which it is evaluated:
// the work that ours and the peers in bench/peers/ do alike.

inline constexpr std::int64_t kTimes = 4096;
inline constexpr std::int64_t kKeysOfTake = kTimes + 1;

inline const Matrix3& ParentOfTake() {
    static const Matrix3 parent = PoseOfKey(40);
    return parent;
}

// All between the same two keys, whose place is the middle.
inline constexpr std::int64_t kMiddle = kKeysOfTake / 2;
std::vector<TimeValue> TimesInOneBracket();

// Each between two keys of its own: the keys at its place in the row and at the next.
std::vector<TimeValue> TimesInNewBrackets();

// How far such a time is from the left key to the right one.
inline double FractionAt(TimeValue t) {
    return static_cast<double>(t % kKeySpacing) / kKeySpacing;
}

// A controller with all keys of the take, which gives the pose in the world.
class TakeTrack {
  public:
    explicit TakeTrack(std::int64_t keys = kKeysOfTake) { FillWithTake(*control_, keys); }
    Matrix3 InWorld(TimeValue t) { return MatrixAt(*control_, t, ParentOfTake()); }

  private:
    OwnedControl<OpenTransform> control_{new OpenTransform};
};

// What a peer does for the times, if its poses are ours to a millionth.
// `poseAt` gives the pose of the time at a place in its own form, and `toHost` makes ours of that.
bool IsOurs(TakeTrack& track, TimeValue t, const Matrix3& theirs);

void MeasurePeer(benchmark::State& state, const std::vector<TimeValue>& times, auto poseAt,
                 auto toHost) {
    const BenchWorld world;
    TakeTrack track;
    for (std::size_t i = 0; i < times.size(); ++i) {
        if (!IsOurs(track, times[i], toHost(poseAt(i)))) state.SkipWithError("other poses");
    }
    Meter meter(state, std::ssize(times));
    for (auto _ : state) {
        for (std::size_t i = 0; i < times.size(); ++i)
            benchmark::DoNotOptimize(poseAt(i));
    }
}
