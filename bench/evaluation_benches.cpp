// Values out of keys: whole transforms and floats, single and as poses of a skeleton, and the keys
// around a time. The peers that other libraries are stand in bench/peers/.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <random>

#include "bench/evaluation_work.h"
#include "bench/meter.h"
#include "controllers/scalar_control.h"
#include "host/animate.h"

std::vector<TimeValue> TimesInOneBracket() {
    std::vector<TimeValue> times;
    for (std::int64_t i = 0; i < kTimes; ++i)
        times.push_back(TimeOfKey(kMiddle) + 1 + static_cast<TimeValue>(i % (kKeySpacing - 1)));
    return times;
}

std::vector<TimeValue> TimesInNewBrackets() {
    std::vector<TimeValue> times;
    for (std::int64_t i = 0; i < kTimes; ++i)
        times.push_back(TimeOfKey(i) + 1 + static_cast<TimeValue>(i % (kKeySpacing - 1)));
    return times;
}

bool IsOurs(TakeTrack& track, TimeValue t, const Matrix3& theirs) {
    constexpr float kNear = 1e-6f;  // of a row's length, of 1 where it is shorter
    const Matrix3 ours = track.InWorld(t);
    const auto isNear = [&](int row) {
        const float length = std::max(1.0f, ours.GetRow(row).Length());
        return (ours.GetRow(row) - theirs.GetRow(row)).Length() <= kNear * length;
    };
    return isNear(0) && isNear(1) && isNear(2) && isNear(3);
}

namespace {

// Of one operation for each of the times.
void MeasureAt(benchmark::State& state, const std::vector<TimeValue>& times, auto work) {
    Meter meter(state, std::ssize(times));
    for (auto _ : state) {
        for (const TimeValue t : times)
            benchmark::DoNotOptimize(work(t));
    }
}

std::vector<TimeValue> TimesOfKeys() {
    std::vector<TimeValue> times;
    for (std::int64_t i = 0; i < kTimes; ++i)
        times.push_back(TimeOfKey(i));
    return times;
}

std::vector<TimeValue> OneTimeAgain() {
    return std::vector<TimeValue>(kTimes, TimeOfKey(kMiddle) + 1);
}

template <std::vector<TimeValue> (*kTimesOf)()>
void Evaluate(benchmark::State& state) {
    const BenchWorld world;
    TakeTrack track;
    MeasureAt(state, kTimesOf(), [&](TimeValue t) { return track.InWorld(t); });
}

// Keys that are so far apart each, the same for ours and for the peer.
std::vector<TimeValue> EvenTimes(std::int64_t keys) {
    std::vector<TimeValue> times;
    for (std::int64_t i = 0; i < keys; ++i)
        times.push_back(TimeOfKey(i));
    return times;
}

std::vector<TimeValue> UnevenTimes(std::int64_t keys) {
    std::mt19937 random(5);
    std::vector<TimeValue> times;
    TimeValue t = 0;
    for (std::int64_t i = 0; i < keys; ++i) {
        times.push_back(t);
        // Most keys are near the one before; now and then there is a long rest.
        t += 2 + static_cast<TimeValue>(random() % 20 == 0 ? random() % 8000 : random() % 100);
    }
    return times;
}

std::vector<TimeValue> AtRandom(const std::vector<TimeValue>& keys) {
    std::mt19937 random(3);
    std::vector<TimeValue> times;
    for (std::int64_t i = 0; i < kTimes; ++i) {
        const std::size_t left = random() % (keys.size() - 1);
        const auto gap = static_cast<std::uint32_t>(keys[left + 1] - keys[left]);
        times.push_back(keys[left] + 1 + static_cast<TimeValue>(random() % (gap - 1)));
    }
    return times;
}

using KeyTimes = std::vector<TimeValue> (*)(std::int64_t keys);

// Whether a time between two keys has them around it, as a search of their times alone finds them.
bool IsAround(const KeyBracket<Matrix3>& bracket, const std::vector<TimeValue>& keys, TimeValue t) {
    const auto right = std::lower_bound(keys.begin(), keys.end(), t);
    return bracket.left->time == *std::prev(right) && bracket.right->time == *right &&
           bracket.index == right - keys.begin() - 1;
}

template <KeyTimes kKeyTimes>
void FindBracket(benchmark::State& state) {
    const std::vector<TimeValue> keys = kKeyTimes(state.range(0));
    const OwnedControl<OpenTransform> control(new OpenTransform);
    for (const TimeValue t : keys)
        control->AddKey({0, t, {}});
    const std::vector<TimeValue> times = AtRandom(keys);
    for (const TimeValue t : times) {
        if (!IsAround(control->table.FindBracket(t), keys, t)) state.SkipWithError("other keys");
    }
    MeasureAt(state, times, [&](TimeValue t) { return control->table.FindBracket(t); });
}

template <KeyTimes kKeyTimes>
void LowerBound(benchmark::State& state) {
    const std::vector<TimeValue> keys = kKeyTimes(state.range(0));
    MeasureAt(state, AtRandom(keys),
              [&](TimeValue t) { return std::lower_bound(keys.begin(), keys.end(), t); });
}

// Floats: the same keys in a controller, and in two arrays as they would be kept by hand.

struct OpenScalar : ScalarControl {
    using BaseControl::AddKey;
};

float ValueOfKey(std::int64_t index) {
    return std::sin(static_cast<float>(index) * 0.1f);
}

class SortedArrays {
  public:
    explicit SortedArrays(std::int64_t keys) : times_(EvenTimes(keys)) {
        for (std::int64_t i = 0; i < keys; ++i)
            values_.push_back(ValueOfKey(i));
    }
    // Called as a controller is.
    __attribute__((noinline)) void GetValue(TimeValue t, float& value, Interval& valid) const {
        valid.SetInstant(t);
        const auto right = std::upper_bound(times_.begin(), times_.end(), t) - times_.begin();
        const auto at = static_cast<std::size_t>(right);
        const float fraction = static_cast<float>(t - times_[at - 1]) /
                               static_cast<float>(times_[at] - times_[at - 1]);
        value = fraction * (values_[at] - values_[at - 1]) + values_[at - 1];
    }

  private:
    std::vector<TimeValue> times_;
    std::vector<float> values_;
};

class ScalarTrack {
  public:
    explicit ScalarTrack(std::int64_t keys) {
        for (std::int64_t i = 0; i < keys; ++i)
            control_->AddKey({0, TimeOfKey(i), ValueOfKey(i)});
    }
    void GetValue(TimeValue t, float& value, Interval& valid) {
        control_->GetValue(t, &value, valid, CTRL_ABSOLUTE);
    }

  private:
    OwnedControl<OpenScalar> control_{new OpenScalar};
};

template <class Track>
float ValueAt(Track& track, TimeValue t) {
    float value = 0;
    Interval valid = FOREVER;
    track.GetValue(t, value, valid);
    benchmark::DoNotOptimize(valid);
    return value;
}

using TimesAmong = std::vector<TimeValue> (*)(const std::vector<TimeValue>& keys);

std::vector<TimeValue> InOneBracket(const std::vector<TimeValue>& keys) {
    std::vector<TimeValue> times;
    for (std::int64_t i = 0; i < kTimes; ++i)
        times.push_back(keys[keys.size() / 2] + 1 + static_cast<TimeValue>(i % (kKeySpacing - 1)));
    return times;
}

template <class Track, TimesAmong kTimesAmong>
void ScalarAt(benchmark::State& state) {
    const BenchWorld world;
    Track track(state.range(0));
    const SortedArrays plain(state.range(0));
    const std::vector<TimeValue> times = kTimesAmong(EvenTimes(state.range(0)));
    for (const TimeValue t : times) {
        if (ValueAt(track, t) != ValueAt(plain, t)) state.SkipWithError("another value");
    }
    MeasureAt(state, times, [&](TimeValue t) { return ValueAt(track, t); });
}

// A skeleton's poses: every node in the space of the one above, as a host plays a take.

constexpr std::int64_t kNodes = 31;
constexpr std::int64_t kFrames = 2752;

class Skeleton {
  public:
    Skeleton() : controls_(kNodes) {
        for (auto& control : controls_) {
            control = std::make_unique<OpenTransform>();
            FillWithTake(*control, kFrames);
        }
    }

    // Chains of five hang from the root.
    Matrix3 PoseOfLast(TimeValue t) {
        const Matrix3 root = MatrixAt(*controls_[0], t, Matrix3());
        Matrix3 world = root;
        for (std::size_t node = 1; node < controls_.size(); ++node)
            world = MatrixAt(*controls_[node], t, node % 5 == 1 ? root : world);
        return world;
    }

  private:
    std::vector<std::unique_ptr<OpenTransform>> controls_;
};

enum class Order { kForward, kBackward, kRandom };

template <Order kOrder>
void Pose(benchmark::State& state) {
    const BenchWorld world;
    Skeleton skeleton;
    std::vector<TimeValue> times;
    for (std::int64_t frame = 0; frame < kFrames - 1; ++frame)
        times.push_back(TimeOfKey(frame) + kKeySpacing / 3);
    if (kOrder == Order::kBackward) std::ranges::reverse(times);
    if (kOrder == Order::kRandom) std::ranges::shuffle(times, std::mt19937(2));
    MeasureAt(state, times, [&](TimeValue t) { return skeleton.PoseOfLast(t); });
}

void KeyCounts(benchmark::internal::Benchmark* bench) {
    bench->Arg(100)->Arg(10'000)->Arg(1'000'000);
}
void FewKeyCounts(benchmark::internal::Benchmark* bench) {
    bench->Arg(100)->Arg(10'000);
}

BENCHMARK(Evaluate<TimesInOneBracket>)->Name("evaluate in one bracket/ours");
BENCHMARK(Evaluate<TimesInNewBrackets>)->Name("evaluate in new brackets/ours");
BENCHMARK(Evaluate<TimesOfKeys>)->Name("evaluate at a key/ours");
BENCHMARK(Evaluate<OneTimeAgain>)->Name("evaluate again/ours");

BENCHMARK(FindBracket<EvenTimes>)->Name("find a bracket, even keys/ours")->Apply(KeyCounts);
BENCHMARK(LowerBound<EvenTimes>)->Name("find a bracket, even keys/lower_bound")->Apply(KeyCounts);
BENCHMARK(FindBracket<UnevenTimes>)->Name("find a bracket, uneven keys/ours")->Apply(KeyCounts);
BENCHMARK(LowerBound<UnevenTimes>)
    ->Name("find a bracket, uneven keys/lower_bound")
    ->Apply(KeyCounts);

BENCHMARK(ScalarAt<ScalarTrack, AtRandom>)->Name("scalar at random/ours")->Apply(FewKeyCounts);
BENCHMARK(ScalarAt<SortedArrays, AtRandom>)
    ->Name("scalar at random/sorted arrays")
    ->Apply(FewKeyCounts);
BENCHMARK(ScalarAt<ScalarTrack, InOneBracket>)
    ->Name("scalar in one bracket/ours")
    ->Apply(FewKeyCounts);
BENCHMARK(ScalarAt<SortedArrays, InOneBracket>)
    ->Name("scalar in one bracket/sorted arrays")
    ->Apply(FewKeyCounts);

BENCHMARK(Pose<Order::kBackward>)->Name("a pose backward/ours");
BENCHMARK(Pose<Order::kForward>)->Name("a pose backward/forward");
BENCHMARK(Pose<Order::kRandom>)->Name("a pose at random/ours");
BENCHMARK(Pose<Order::kForward>)->Name("a pose at random/forward");

}  // namespace
