// Many keys deleted or inserted at once, and brought back by undo and redo; then what goes over a
// whole table. All is told for a key.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "bench/bench_world.h"
#include "bench/meter.h"
#include "bench/tracks.h"
#include "host/hold.h"
#include "host/interface.h"

namespace {

void EditedKeyCounts(benchmark::internal::Benchmark* bench) {
    bench->Arg(10'000)->Arg(100'000);
}

// A controller in a running host, and the one undo step of it.
class Edited {
  public:
    ~Edited() { FlushUndo(); }

    OpenTransform& Control() { return *control_; }
    headless::Session& Session() { return world_.Session(); }

    void Add(std::int64_t index, std::uint32_t flags = 0) {
        control_->AddKey({flags, TimeOfKey(index), PoseOfKey(index)});
    }
    void Empty() {
        FlushUndo();
        control_->DeleteKeys(TRACK_DOALL);
    }

  private:
    static void FlushUndo() { GetCOREInterface()->FlushUndoBuffer(); }

    BenchWorld world_;
    OwnedControl<OpenTransform> control_{new OpenTransform};
};

// What is done to `keys` of a table of twice as many: how it is made ready, and the act itself.

struct DeleteEverySecond {
    static void Prepare(Edited& edited, std::int64_t keys) {
        for (std::int64_t i = 0; i < 2 * keys; ++i)
            edited.Add(i, i % 2 == 0 ? 0 : 1);
    }
    static void Act(Edited& edited, std::int64_t) { edited.Control().DeleteKeys(TRACK_DOSEL); }
};

// The least favourable order for keys in one array.
struct InsertAtRandom {
    static void Prepare(Edited& edited, std::int64_t keys) {
        for (std::int64_t i = 0; i < keys; ++i)
            edited.Add(2 * i);
    }
    static void Act(Edited& edited, std::int64_t keys) {
        std::vector<std::int64_t> order;
        for (std::int64_t i = 0; i < keys; ++i)
            order.push_back(2 * i + 1);
        std::shuffle(order.begin(), order.end(), std::mt19937(4));
        for (const std::int64_t index : order)
            edited.Add(index);
    }
};

template <class Edit>
void Do(benchmark::State& state) {
    Edited edited;
    Meter meter(state, state.range(0));
    for (auto _ : state) {
        meter.Aside([&] {
            edited.Empty();
            Edit::Prepare(edited, state.range(0));
            theHold.Begin();
        });
        Edit::Act(edited, state.range(0));
        meter.Aside([] { theHold.Accept("edit"); });
    }
}

template <class Edit, Way kWay>
void Retrace(benchmark::State& state) {
    Edited edited;
    Edit::Prepare(edited, state.range(0));
    theHold.Begin();
    Edit::Act(edited, state.range(0));
    theHold.Accept("edit");
    RetraceStep<kWay>(state, state.range(0), edited.Session());
}

// Acts on a whole table.

void FillWhole(Edited& edited, std::int64_t keys) {
    for (std::int64_t i = 0; i < keys; ++i)
        edited.Add(i);
}

void Sample(benchmark::State& state) {
    Edited source;
    FillWhole(source, state.range(0));
    const OwnedControl<OpenTransform> sampled(new OpenTransform);
    Meter meter(state, state.range(0));
    for (auto _ : state)
        sampled->Copy(&source.Control());
}

void ChangeParents(benchmark::State& state) {
    Edited edited;
    FillWhole(edited, state.range(0));
    Meter meter(state, state.range(0));
    for (auto _ : state)
        edited.Control().ChangeParents(0, PoseOfKey(3), PoseOfKey(4), Matrix3());
}

template <class Edit>
void RegisterEdit(const std::string& edit) {
    const auto add = [&](const std::string& name, void (*function)(benchmark::State&)) {
        benchmark::RegisterBenchmark((name + "/ours").c_str(), function)->Apply(EditedKeyCounts);
    };
    add(edit, Do<Edit>);
    add("undo " + edit, Retrace<Edit, Way::kUndo>);
    add("redo " + edit, Retrace<Edit, Way::kRedo>);
}

BENCHMARK(Sample)->Name("sample a controller/ours")->Apply(EditedKeyCounts);
BENCHMARK(ChangeParents)->Name("change parents/ours")->Apply(EditedKeyCounts);

[[maybe_unused]] const bool editsAreRegistered = [] {
    RegisterEdit<DeleteEverySecond>("delete keys");
    RegisterEdit<InsertAtRandom>("insert keys at random");
    return true;
}();

}  // namespace
