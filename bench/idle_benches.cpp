// What happens all the time and is to cost next to nothing: lending a snapshot, moving the host's
// time while the Core has nothing to do, and the trace of what is above its limit.

#include <benchmark/benchmark.h>

#include <memory>

#include "adaptor/utility_manager.h"
#include "bench/bench_world.h"
#include "bench/meter.h"
#include "host/interface.h"
#include "nodes/snapshots.h"
#include "tvl/log.h"

namespace {

constexpr int kCalls = 1000;

void LendFromPool(benchmark::State& state) {
    BenchWorld world;
    TVL::CoreNode& node = world.MakeNode(true);
    node.ReleaseSnapshot(node.AcquireSnapshot(0));
    Meter meter(state, kCalls);
    for (auto _ : state) {
        for (int call = 0; call < kCalls; ++call)
            node.ReleaseSnapshot(node.AcquireSnapshot(call));
    }
}

// As it would be without a pool.
void MakeAndFree(benchmark::State& state) {
    BenchWorld world;
    auto& node = static_cast<CMAXNode&>(world.MakeNode(true));
    Meter meter(state, kCalls);
    for (auto _ : state) {
        for (int call = 0; call < kCalls; ++call) {
            const auto snapshot = std::make_unique<CMAXNode::CMAXSnapshot>(node);
            snapshot->Acquire(node, call);
            benchmark::DoNotOptimize(snapshot.get());
        }
    }
}

void MoveTime(benchmark::State& state) {
    Meter meter(state, kCalls);
    for (auto _ : state) {
        for (int call = 1; call <= kCalls; ++call)
            GetCOREInterface()->SetTime(call, false);
    }
}

void MoveTimeForTheCore(benchmark::State& state) {
    const BenchWorld world;
    TimeChangeCallback* const callback = &UtilityManager::Get().timeCallback;
    GetCOREInterface()->RegisterTimeChangeCallback(callback);
    MoveTime(state);
    GetCOREInterface()->UnRegisterTimeChangeCallback(callback);
}

void MoveTimeOfTheHostAlone(benchmark::State& state) {
    const BenchWorld world;
    MoveTime(state);
}

void TraceScope(benchmark::State& state) {
    const BenchWorld world;
    TVL::Log::GetInstance();
    Meter meter(state, kCalls);
    for (auto _ : state) {
        for (int call = 0; call < kCalls; ++call) {
            const TVL::Log scope("creating helper", TVL::Log::kTraffic);
            benchmark::DoNotOptimize(scope.indent);
        }
    }
}

void TraceLocal(benchmark::State& state) {
    const BenchWorld world;
    TVL::Log::GetInstance();
    Meter meter(state, kCalls);
    for (auto _ : state) {
        for (int call = 0; call < kCalls; ++call) {
            TVL::Log local(TVL::Log::kTraffic);
            benchmark::DoNotOptimize(local.Write("creating helper"));
        }
    }
}

BENCHMARK(LendFromPool)->Name("lend a snapshot/ours");
BENCHMARK(MakeAndFree)->Name("lend a snapshot/made anew");
BENCHMARK(MoveTimeForTheCore)->Name("move the time/ours");
BENCHMARK(MoveTimeOfTheHostAlone)->Name("move the time/host alone");

BENCHMARK(TraceScope)->Name("trace below the limit, scope/ours");
BENCHMARK(TraceLocal)->Name("trace below the limit, local/ours");

}  // namespace
