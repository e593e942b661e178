// A sample's whole road from the Core into the scene, and the take's way back and forth through
// undo. The peer is the same road into the host's own controller.

#include <benchmark/benchmark.h>

#include "adaptor/max_adaptor_interface.h"
#include "bench/bench_world.h"
#include "bench/meter.h"
#include "host/animate.h"
#include "host/interface.h"

namespace {

enum class Controller { kOurs, kHosts };

constexpr double kSamplesInSecond = 30;
constexpr double kBeforeAll = -1;  // seconds

// A node into which takes are recorded, through the adaptor alone.
class TakeNode {
  public:
    TakeNode(BenchWorld& world, Controller controller)
        : node_(world.MakeNode(controller == Controller::kOurs)) {
        TVL::CSnapshot* const snapshot = node_.AcquireSnapshot(0);
        pose_ = snapshot->GetWorldTransform();
        node_.ReleaseSnapshot(snapshot);
    }

    void Record(std::int64_t samples) {
        for (std::int64_t sample = 0; sample < samples; ++sample) {
            TVL::CSnapshot* const snapshot =
                node_.AcquireSnapshot(static_cast<double>(sample) / kSamplesInSecond);
            pose_[3][0] = static_cast<double>(sample) * 0.01;
            snapshot->SetWorldTransform(pose_);
            node_.ReleaseSnapshot(snapshot);
        }
    }

    // Without a way back.
    void Clear() {
        GetCOREInterface()->FlushUndoBuffer();
        node_.DeleteAnimationFrom(kBeforeAll);
    }

  private:
    TVL::CoreNode& node_;
    TVL::CMatrix4 pose_;
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

constexpr std::int64_t kSamples = 10'000;

// The table has its size from a take before, so that what is allocated is the road's own.
template <Controller kController>
void SampleUnheld(benchmark::State& state) {
    BenchWorld world;
    TakeNode node(world, kController);
    AnimateOn();
    node.Record(kSamples);
    Meter meter(state, kSamples);
    for (auto _ : state) {
        meter.Aside([&] { node.Clear(); });
        node.Record(kSamples);
    }
    AnimateOff();
}

template <Controller kController>
void SampleHeld(benchmark::State& state) {
    BenchWorld world;
    TakeNode node(world, kController);
    std::size_t empty = 0;
    OpenTake();
    node.Record(kSamples);
    CloseTake();
    Meter meter(state, kSamples);
    for (auto _ : state) {
        meter.Aside([&] {
            node.Clear();
            OpenTake();
            empty = heapCounts.liveBytes;
        });
        node.Record(kSamples);
        meter.Aside([&] {
            meter.ShowBytes(heapCounts.liveBytes - empty);
            CloseTake();
        });
    }
}

template <Controller kController, Way kWay>
void Retrace(benchmark::State& state) {
    BenchWorld world;
    TakeNode node(world, kController);
    OpenTake();
    node.Record(state.range(0));
    CloseTake();
    RetraceStep<kWay>(state, state.range(0), world.Session());
}

void TakeLengths(benchmark::internal::Benchmark* bench) {
    bench->Arg(100)->Arg(10'000)->Arg(100'000);
}

BENCHMARK(SampleUnheld<Controller::kOurs>)->Name("a sample's road/ours");
BENCHMARK(SampleUnheld<Controller::kHosts>)->Name("a sample's road/host's own");
BENCHMARK(SampleHeld<Controller::kOurs>)->Name("a sample's road, held/ours");
BENCHMARK(SampleHeld<Controller::kHosts>)->Name("a sample's road, held/host's own");
BENCHMARK(Retrace<Controller::kOurs, Way::kUndo>)->Name("undo a key/ours")->Apply(TakeLengths);
BENCHMARK(Retrace<Controller::kHosts, Way::kUndo>)
    ->Name("undo a key/host's own")
    ->Apply(TakeLengths);
BENCHMARK(Retrace<Controller::kOurs, Way::kRedo>)->Name("redo a key/ours")->Apply(TakeLengths);
BENCHMARK(Retrace<Controller::kHosts, Way::kRedo>)
    ->Name("redo a key/host's own")
    ->Apply(TakeLengths);

}  // namespace
