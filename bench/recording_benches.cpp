// A sample's whole road from the Core into the scene, and the take's way back and forth through
// undo. The peer is what has to be done for a sample, by hand.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <memory>
#include <numeric>
#include <random>
#include <vector>

#include "adaptor/max_adaptor_interface.h"
#include "bench/bench_world.h"
#include "bench/meter.h"
#include "controllers/key_table.h"
#include "host/interface.h"
#include "measures/core_space.h"

namespace {

constexpr double kSamplesInSecond = 30;
constexpr double kBeforeAll = -1;  // seconds

double SecondsOf(std::int64_t sample) {
    return static_cast<double>(sample) / kSamplesInSecond;
}

// The compiler knows none of its numbers.
TVL::CMatrix4 PoseOf(std::int64_t sample) {
    TVL::CMatrix4 pose = TVL::CMatrix4::Identity();
    pose[3][0] = static_cast<double>(sample) * 0.01;
    benchmark::DoNotOptimize(pose);
    return pose;
}

// A node into which takes are recorded, through the adaptor alone.
class TakeNode {
  public:
    explicit TakeNode(BenchWorld& world) : node_(world.MakeNode()) {}

    void Record(std::int64_t samples) {
        for (std::int64_t sample = 0; sample < samples; ++sample)
            RecordOne(sample);
    }
    void RecordOne(std::int64_t sample) {
        TVL::CSnapshot* const snapshot = node_.AcquireSnapshot(SecondsOf(sample));
        snapshot->SetWorldTransform(PoseOf(sample));
        node_.ReleaseSnapshot(snapshot);
    }

    // Without a way back.
    void Clear() {
        GetCOREInterface()->FlushUndoBuffer();
        node_.DeleteAnimationFrom(kBeforeAll);
    }

  private:
    TVL::CoreNode& node_;
};

void OpenTake() {
    MaxAdaptorInterface& adaptor = *MaxAdaptorInterface::GetInstance();
    adaptor.BeginUndoGroup("Take");
    adaptor.BeginRecordingUnkeyed({});
}

void CloseTake() {
    MaxAdaptorInterface& adaptor = *MaxAdaptorInterface::GetInstance();
    adaptor.EndRecording();
    adaptor.EndUndoGroup();
}

// Keys and their names, and two records of each key for a way back, made by new as a hold takes
// them: the value before, and the key that came. Whoever depends on the keys is told of each. The
// node stands below the root, so that the pose in the host's space is its key's value.
class TakeByHand {
  public:
    using Key = TarvoKey<Matrix3>;

    void Record(std::int64_t samples) {
        for (std::int64_t sample = 0; sample < samples; ++sample) {
            const std::size_t place = keys_.size();
            records_.push_back(std::make_unique<ValueRecord>(current_, place));
            current_ = {0, TicksOf(SecondsOf(sample)), InHost(PoseOf(sample))};
            records_.push_back(std::make_unique<KeyRecord>(current_.time, place));
            keys_.push_back(current_);
            names_.push_back(place);
            for (Dependent* one : dependents_)
                one->Changed();
        }
    }
    void Clear() {
        records_.clear();
        keys_.clear();
        names_.clear();
    }
    const Key& Last() const { return keys_.back(); }

  private:
    struct UndoRecord {
        virtual ~UndoRecord() = default;
    };
    struct ValueRecord final : UndoRecord {
        ValueRecord(const Key& key, std::size_t of) : before(key), name(of) {}
        Key before;
        std::size_t name;
    };
    struct KeyRecord final : UndoRecord {
        KeyRecord(TimeValue t, std::size_t of) : time(t), name(of) {}
        TimeValue time;
        std::size_t name;
    };
    struct Dependent {
        virtual ~Dependent() = default;
        virtual void Changed() { ++changes; }
        std::int64_t changes = 0;
    };

    TimeValue TicksOf(double seconds) const {
        return static_cast<TimeValue>(ticksPerFrame_ * (frameRate_ * seconds));
    }
    Matrix3 InHost(const TVL::CMatrix4& pose) const {
        return {InHost(pose[0]), InHost(pose[1]), InHost(pose[2]), InHost(pose[3])};
    }
    Point3 InHost(const double* core) const {
        return {static_cast<float>(unitsPerMetre_ * core[0]),
                static_cast<float>(-unitsPerMetre_ * core[2]),
                static_cast<float>(unitsPerMetre_ * core[1])};
    }

    double unitsPerMetre_ = HostUnitsPerMetre();
    double ticksPerFrame_ = GetTicksPerFrame();
    double frameRate_ = GetFrameRate();
    Key current_;
    std::vector<Key> keys_;
    std::vector<std::size_t> names_;
    std::vector<std::unique_ptr<UndoRecord>> records_;
    Dependent node_;
    std::vector<Dependent*> dependents_{&node_};
};

// Whether the node that was recorded last stands just where the last key has it.
bool StandsAt(const TarvoKey<Matrix3>& key) {
    INode* const root = GetCOREInterface()->GetRootNode();
    return root->GetChildNode(0)->GetNodeTM(key.time) == key.value;
}

void SampleHeld(benchmark::State& state) {
    BenchWorld world;
    TakeNode node(world);
    std::size_t empty = 0;
    OpenTake();
    node.Record(state.range(0));
    CloseTake();
    Meter meter(state, state.range(0));
    for (auto _ : state) {
        meter.Aside([&] {
            node.Clear();
            OpenTake();
            empty = heapCounts.liveBytes;
        });
        node.Record(state.range(0));
        meter.Aside([&] {
            meter.ShowBytes(heapCounts.liveBytes - empty);
            CloseTake();
        });
    }
}

void SampleByHand(benchmark::State& state) {
    BenchWorld world;
    TakeNode node(world);
    OpenTake();
    node.Record(state.range(0));
    CloseTake();
    TakeByHand byHand;
    byHand.Record(state.range(0));
    if (!StandsAt(byHand.Last())) state.SkipWithError("another pose");
    Meter meter(state, state.range(0));
    for (auto _ : state) {
        meter.Aside([&] { byHand.Clear(); });
        byHand.Record(state.range(0));
    }
}

enum class Way { kUndo, kRedo };

// Goes back and forth over the newest undo step, on which `operations` were done, and measures one
// way.
template <Way kWay>
void RetraceStep(benchmark::State& state, std::int64_t operations, headless::Session& session) {
    Meter meter(state, operations);
    const auto back = [&] { session.Undo(); };
    const auto again = [&] { session.Redo(); };
    for (auto _ : state) {
        kWay == Way::kUndo ? back() : meter.Aside(back);
        kWay == Way::kRedo ? again() : meter.Aside(again);
    }
}

// A take of a skeleton, recorded frame by frame.
template <Way kWay>
void Retrace(benchmark::State& state) {
    constexpr std::int64_t kJoints = 31;
    BenchWorld world;
    std::vector<TakeNode> nodes;
    for (std::int64_t node = 0; node < kJoints; ++node)
        nodes.emplace_back(world);
    OpenTake();
    for (std::int64_t frame = 0; frame < state.range(0); ++frame) {
        for (TakeNode& node : nodes)
            node.RecordOne(frame);
    }
    CloseTake();
    RetraceStep<kWay>(state, state.range(0) * kJoints, world.Session());
}

// The least favourable order for keys in one array.
void UndoAtRandom(benchmark::State& state) {
    BenchWorld world;
    TakeNode node(world);
    std::vector<std::int64_t> order(static_cast<std::size_t>(state.range(0)));
    std::iota(order.begin(), order.end(), 0);
    std::ranges::shuffle(order, std::mt19937(4));
    OpenTake();
    for (const std::int64_t sample : order)
        node.RecordOne(sample);
    CloseTake();
    RetraceStep<Way::kUndo>(state, state.range(0), world.Session());
}

BENCHMARK(SampleHeld)->Name("a sample's road, held/ours")->Arg(10'000)->Arg(100'000);
BENCHMARK(SampleByHand)->Name("a sample's road, held/by hand")->Arg(10'000)->Arg(100'000);
// The demo's capture, and one ten times as long.
BENCHMARK(Retrace<Way::kUndo>)->Name("undo a take, a sample/ours")->Arg(2'752)->Arg(27'520);
BENCHMARK(Retrace<Way::kRedo>)->Name("redo a take, a sample/ours")->Arg(2'752)->Arg(27'520);
BENCHMARK(UndoAtRandom)->Name("undo samples at random/ours")->Arg(10'000)->Arg(100'000);

}  // namespace
