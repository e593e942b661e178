// Recording, playing back and looking up keys: this system's table against the host's own
// controller, an ordered map, and the plain scan that the search replaces. `allocations` is per
// sample.

#include <benchmark/benchmark.h>

#include <cmath>
#include <map>
#include <random>

#include "controllers/transform_control.h"
#include "headless/session.h"
#include "host/animate.h"
#include "host/interface.h"
#include "support/allocations.h"

namespace {

constexpr TimeValue kFrame = 160;

struct OpenTransform : TransformControl {
    using BaseControl::table;
};

Matrix3 Pose(std::int64_t frame) {
    Matrix3 pose;
    const float angle = static_cast<float>(frame % 600) * 0.01f;
    pose.SetRotate(Quat{0, 0, std::sin(angle / 2), std::cos(angle / 2)});
    pose.SetRow(3, Point3(static_cast<float>(frame), 1, 2));
    return pose;
}

void Record(Control& control, std::int64_t frames) {
    SetXFormPacket packet;
    packet.command = XFORM_SET;
    AnimateOn();
    for (std::int64_t frame = 0; frame < frames; ++frame) {
        packet.tmAxis = Pose(frame);
        control.SetValue(static_cast<TimeValue>(frame) * kFrame, &packet, 1, CTRL_ABSOLUTE);
    }
    AnimateOff();
}

// Four reads between each two frames, as a renderer with motion blur makes them.
void Play(Control& control, std::int64_t frames) {
    for (std::int64_t t = 0; t < frames * kFrame; t += kFrame / 4) {
        Matrix3 value;
        Interval valid = FOREVER;
        control.GetValue(static_cast<TimeValue>(t), &value, valid, CTRL_RELATIVE);
        benchmark::DoNotOptimize(value);
    }
}

Control* NewOurs() {
    return new OpenTransform;
}
Control* NewHosts() {
    return static_cast<Control*>(
        GetCOREInterface()->CreateInstance(CTRL_MATRIX3_CLASS_ID, kPositionRotationScaleClassId));
}

void RecordATake(benchmark::State& state, Control* (*make)()) {
    const headless::Session session;
    const std::size_t before = Allocations();
    for (auto _ : state) {
        Control* const control = make();
        Record(*control, state.range(0));
        control->DeleteThis();
    }
    const double samples =
        static_cast<double>(state.iterations()) * static_cast<double>(state.range(0));
    state.counters["allocations"] = static_cast<double>(Allocations() - before) / samples;
    state.SetItemsProcessed(static_cast<std::int64_t>(samples));
}
BENCHMARK_CAPTURE(RecordATake, ours, NewOurs)->Arg(1000)->Arg(100000);
BENCHMARK_CAPTURE(RecordATake, hosts, NewHosts)->Arg(1000)->Arg(100000);

void PlayATake(benchmark::State& state, Control* (*make)()) {
    const headless::Session session;
    Control* const control = make();
    Record(*control, state.range(0));
    const std::size_t before = Allocations();
    for (auto _ : state)
        Play(*control, state.range(0));
    const std::int64_t samples = state.iterations() * state.range(0) * 4;
    state.counters["allocations"] =
        static_cast<double>(Allocations() - before) / static_cast<double>(samples);
    state.SetItemsProcessed(samples);
    control->DeleteThis();
}
BENCHMARK_CAPTURE(PlayATake, ours, NewOurs)->Arg(1000)->Arg(100000);
BENCHMARK_CAPTURE(PlayATake, hosts, NewHosts)->Arg(1000)->Arg(100000);

std::vector<TimeValue> RandomTimes(std::int64_t keys) {
    std::mt19937 random(3);
    std::vector<TimeValue> times(1024);
    for (TimeValue& t : times)
        t = static_cast<TimeValue>(random() % static_cast<std::uint32_t>(keys)) * 16;
    return times;
}

KeyTable<Matrix3> FilledTable(std::int64_t keys) {
    KeyTable<Matrix3> table;
    for (std::int64_t i = 0; i < keys; ++i)
        table.keys.push_back({0, static_cast<TimeValue>(i) * 16, Pose(i)});
    return table;
}

// The exact key at random times, as editing asks for it.
template <class Find>
void FindRandomKeys(benchmark::State& state, Find find) {
    const std::vector<TimeValue> times = RandomTimes(state.range(0));
    std::size_t next = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(find(times[next++ % times.size()]));
}

void FindInTable(benchmark::State& state) {
    const KeyTable<Matrix3> table = FilledTable(state.range(0));
    FindRandomKeys(state, [&](TimeValue t) { return table.IndexOf(t); });
}
void FindInTableByScan(benchmark::State& state) {
    const KeyTable<Matrix3> table = FilledTable(state.range(0));
    FindRandomKeys(state, [&](TimeValue t) {
        std::int32_t index = 0;
        while (index < table.Count() && table.At(index).time < t)
            ++index;
        return index;
    });
}
void FindInMap(benchmark::State& state) {
    std::map<TimeValue, Matrix3> map;
    for (std::int64_t i = 0; i < state.range(0); ++i)
        map.emplace_hint(map.end(), static_cast<TimeValue>(i) * 16, Pose(i));
    FindRandomKeys(state, [&](TimeValue t) { return map.find(t); });
}
BENCHMARK(FindInTable)->Arg(1000)->Arg(1000000);
BENCHMARK(FindInTableByScan)->Arg(1000)->Arg(1000000);
BENCHMARK(FindInMap)->Arg(1000)->Arg(1000000);

}  // namespace
