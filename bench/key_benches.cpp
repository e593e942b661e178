// Keys going into a track.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "bench/bench_world.h"
#include "bench/meter.h"
#include "bench/tracks.h"
#include "host/animate.h"

namespace {

// A short take is filled many times over, so that the pause between iterations does not show.
constexpr std::int64_t kKeysInIteration = 10'000;

void TrackLengths(benchmark::internal::Benchmark* bench) {
    bench->Arg(100)->Arg(10'000)->Arg(1'000'000);
}

template <class Track>
using Tracks = std::vector<std::unique_ptr<Track>>;

template <class Track>
void Renew(Tracks<Track>& tracks, std::int64_t count) {
    tracks.clear();
    for (std::int64_t i = 0; i < count; ++i)
        tracks.push_back(std::make_unique<Track>());
}

// `write` puts one key into a track; animate mode is on. A first round, which is not measured, gets
// the memory from the system.
template <class Track, class Write>
void FillNewTracks(benchmark::State& state, Write write) {
    const BenchWorld world;
    const std::int64_t keys = state.range(0);
    const std::int64_t count = std::max<std::int64_t>(1, kKeysInIteration / keys);
    Tracks<Track> tracks;
    std::size_t empty = 0;
    const auto renew = [&] {
        Renew(tracks, count);
        empty = heapCounts.liveBytes;
    };
    const auto fill = [&] {
        for (const auto& track : tracks) {
            for (std::int64_t index = 0; index < keys; ++index)
                write(*track, TimeOfKey(index), PoseOfKey(index));
        }
    };
    AnimateOn();
    renew();
    fill();
    Meter meter(state, keys * count);
    for (auto _ : state) {
        meter.Aside(renew);
        fill();
    }
    meter.ShowBytes(heapCounts.liveBytes - empty);
    AnimateOff();
}

template <class Track>
void Append(benchmark::State& state) {
    FillNewTracks<Track>(
        state, [](Track& track, TimeValue t, const Matrix3& pose) { track.Append(t, pose); });
}

// As the host writes.
template <class Track>
void Set(benchmark::State& state) {
    FillNewTracks<Track>(
        state, [](Track& track, TimeValue t, const Matrix3& pose) { track.Set(t, pose); });
}

BENCHMARK(Append<OurTrack>)->Name("append a key/ours")->Apply(TrackLengths);
BENCHMARK(Append<VectorTrack>)->Name("append a key/sorted vector")->Apply(TrackLengths);

BENCHMARK(Set<OurTrack>)->Name("write a value/ours")->Apply(TrackLengths);

}  // namespace
