// The trace of what is above its limit, which happens all the time and is to cost next to nothing.

#include "bench/bench_world.h"
#include "bench/meter.h"
#include "tvl/log.h"

namespace {

void MeasureTrace(benchmark::State& state, auto call) {
    constexpr int kCalls = 1000;
    const BenchWorld world;
    TVL::Log::GetInstance();
    Meter meter(state, kCalls);
    for (auto _ : state) {
        for (int i = 0; i < kCalls; ++i)
            call();
    }
}

void Scope(benchmark::State& state) {
    MeasureTrace(state, [] {
        const TVL::Log scope("creating helper", TVL::Log::kTraffic);
        benchmark::DoNotOptimize(scope.indent);
    });
}

void Local(benchmark::State& state) {
    MeasureTrace(state, [] {
        TVL::Log local(TVL::Log::kTraffic);
        benchmark::DoNotOptimize(local.Write("creating helper"));
    });
}

BENCHMARK(Scope)->Name("trace below the limit, scope/ours");
BENCHMARK(Local)->Name("trace below the limit, local/ours");

}  // namespace
