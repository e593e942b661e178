// Keys going into a track, being found, and giving values.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <memory>
#include <random>
#include <vector>

#include "bench/bench_world.h"
#include "bench/meter.h"
#include "bench/tracks.h"
#include "host/animate.h"

namespace {

// A short take is filled many times over, so that the pause between iterations does not show.
constexpr std::int64_t kKeysInIteration = 10'000;
constexpr std::int64_t kTimes = 4096;

void KeyCounts(benchmark::internal::Benchmark* bench) {
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

// Times of three kinds inside a take, never on a key.

std::vector<TimeValue> InOneBracket(std::int64_t keys) {
    std::vector<TimeValue> times;
    for (std::int64_t i = 0; i < kTimes; ++i)
        times.push_back(TimeOfKey(keys / 2) + 1 + static_cast<TimeValue>(i % (kKeySpacing - 1)));
    return times;
}

// Four for each frame, as a renderer with motion blur reads them.
std::vector<TimeValue> Playing(std::int64_t keys) {
    std::vector<TimeValue> times;
    for (std::int64_t i = 0; i < kTimes; ++i)
        times.push_back(TimeOfKey(i / 4 % (keys - 1)) + 20 + static_cast<TimeValue>(i % 4) * 40);
    return times;
}

std::vector<TimeValue> AtRandom(std::int64_t keys) {
    std::mt19937 random(3);
    std::uniform_int_distribution<std::int64_t> key(0, keys - 2);
    std::uniform_int_distribution<TimeValue> within(1, kKeySpacing - 1);
    std::vector<TimeValue> times;
    for (std::int64_t i = 0; i < kTimes; ++i)
        times.push_back(TimeOfKey(key(random)) + within(random));
    return times;
}

using TimesOf = std::vector<TimeValue> (*)(std::int64_t keys);

// `read` asks a full track for something at one time.
template <class Track, class Read>
void ReadFullTrack(benchmark::State& state, TimesOf timesOf, Read read) {
    const BenchWorld world;
    Track track;
    AnimateOn();
    Fill(track, state.range(0));
    AnimateOff();
    const std::vector<TimeValue> times = timesOf(state.range(0));
    benchmark::DoNotOptimize(read(track, times.back()));
    Meter meter(state, kTimes);
    for (auto _ : state) {
        for (const TimeValue t : times)
            benchmark::DoNotOptimize(read(track, t));
    }
}

template <class Track, TimesOf kTimesOf>
void Evaluate(benchmark::State& state) {
    ReadFullTrack<Track>(state, kTimesOf, [](Track& track, TimeValue t) { return track.Value(t); });
}

template <class Track, TimesOf kTimesOf>
void Find(benchmark::State& state) {
    ReadFullTrack<Track>(state, kTimesOf, [](Track& track, TimeValue t) { return track.Find(t); });
}

BENCHMARK(Append<OurTrack>)->Name("append a key/ours")->Apply(KeyCounts)->Apply(Brief);
BENCHMARK(Append<VectorTrack>)->Name("append a key/sorted vector")->Apply(KeyCounts)->Apply(Brief);
BENCHMARK(Append<MapTrack>)->Name("append a key/map")->Apply(KeyCounts)->Apply(Brief);

BENCHMARK(Set<OurTrack>)->Name("write a value/ours")->Apply(KeyCounts)->Apply(Brief);
BENCHMARK(Set<HostTrack>)->Name("write a value/host's own")->Apply(KeyCounts)->Apply(Brief);

constexpr int kRounds = 8;  // through the times

void RegisterReads(const char* name, void (*function)(benchmark::State&)) {
    benchmark::RegisterBenchmark(name, function)->Apply(KeyCounts)->Iterations(kRounds);
}

[[maybe_unused]] const bool readsAreRegistered = [] {
    RegisterReads("evaluate in one bracket/ours", Evaluate<OurTrack, InOneBracket>);
    RegisterReads("evaluate in one bracket/sorted vector", Evaluate<VectorTrack, InOneBracket>);
    RegisterReads("evaluate in one bracket/map", Evaluate<MapTrack, InOneBracket>);
    RegisterReads("evaluate in one bracket/host's own", Evaluate<HostTrack, InOneBracket>);
    RegisterReads("evaluate at random/ours", Evaluate<OurTrack, AtRandom>);
    RegisterReads("evaluate at random/sorted vector", Evaluate<VectorTrack, AtRandom>);
    RegisterReads("evaluate at random/map", Evaluate<MapTrack, AtRandom>);
    RegisterReads("evaluate at random/host's own", Evaluate<HostTrack, AtRandom>);
    RegisterReads("find keys in playback/ours", Find<OurTrack, Playing>);
    RegisterReads("find keys in playback/sorted vector", Find<VectorTrack, Playing>);
    RegisterReads("find keys in playback/map", Find<MapTrack, Playing>);
    RegisterReads("find keys at random/ours", Find<OurTrack, AtRandom>);
    RegisterReads("find keys at random/sorted vector", Find<VectorTrack, AtRandom>);
    RegisterReads("find keys at random/map", Find<MapTrack, AtRandom>);
    return true;
}();

}  // namespace
