// Many keys deleted, inserted or brought back at once: the first time, by undo and by redo, and
// with somebody who reads the controller at each of its notifications. Then what goes over a whole
// table; the least that can cost is a copy of its keys from one place in memory to another.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <random>
#include <vector>

#include "bench/bench_world.h"
#include "bench/meter.h"
#include "bench/tracks.h"
#include "headless/memory_chunks.h"
#include "host/hold.h"
#include "host/interface.h"

namespace {

using Key = TarvoKey<Matrix3>;

void EditedKeyCounts(benchmark::internal::Benchmark* bench) {
    bench->Arg(1'000)->Arg(10'000)->Arg(100'000);
}

// Refers to a controller, as a node does, and keeps it alive. If asked to it reads the controller
// wherever that tells of a change, as a window does that shows its curve.
class Dependent final : public ReferenceMaker {
  public:
    explicit Dependent(OpenTransform* of) { ReplaceReference(0, of); }
    ~Dependent() override { ReplaceReference(0, nullptr); }

    SClass_ID SuperClassID() override { return 0; }
    Class_ID ClassID() override { return {}; }
    void DeleteThis() override {}
    int NumRefs() override { return 1; }
    RefTargetHandle GetReference(int) override { return control; }
    void SetReference(int, RefTargetHandle target) override {
        control = static_cast<OpenTransform*>(target);
    }
    RefResult NotifyRefChanged(Interval, RefTargetHandle, PartID&, RefMessage) override {
        if (!isReading) return REF_SUCCEED;
        at_ += kKeySpacing / 3;
        benchmark::DoNotOptimize(MatrixAt(*control, at_));
        benchmark::DoNotOptimize(control->GetKeyTime(control->NumKeys() / 2));
        return REF_SUCCEED;
    }

    OpenTransform* control = nullptr;
    bool isReading = false;

  private:
    TimeValue at_ = 0;
};

// A controller in a running host, and the one undo step of it.
class Edited {
  public:
    ~Edited() { FlushUndo(); }

    OpenTransform& Control() { return *dependent_.control; }
    void ReadAtEachChange() { dependent_.isReading = true; }
    headless::Session& Session() { return world_.Session(); }

    void Add(std::int64_t index, std::uint32_t flags = 0) {
        Control().AddKey({flags, TimeOfKey(index), PoseOfKey(index)});
    }
    void Empty() {
        FlushUndo();
        Control().DeleteKeys(TRACK_DOALL);
    }

  private:
    static void FlushUndo() { GetCOREInterface()->FlushUndoBuffer(); }

    BenchWorld world_;
    Dependent dependent_{new OpenTransform};
};

// What is done to `keys` of a table of twice as many: how it is made ready, and the act itself.

struct DeleteEverySecond {
    static void Prepare(Edited& edited, std::int64_t keys) {
        for (std::int64_t i = 0; i < 2 * keys; ++i)
            edited.Add(i, i % 2 == 0 ? 0 : 1);
    }
    static void Act(Edited& edited, std::int64_t) { edited.Control().DeleteKeys(TRACK_DOSEL); }
};

struct InsertBeforeOthers {
    static void Prepare(Edited& edited, std::int64_t keys) {
        for (std::int64_t i = 0; i < keys; ++i)
            edited.Add(keys + i);
    }
    static void Act(Edited& edited, std::int64_t keys) {
        for (std::int64_t i = 0; i < keys; ++i)
            edited.Add(i);
    }
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

enum class Hold { kNone, kOpen };

template <class Edit, Hold kHold>
void Do(benchmark::State& state) {
    Edited edited;
    Meter meter(state, state.range(0));
    for (auto _ : state) {
        meter.Aside([&] {
            edited.Empty();
            Edit::Prepare(edited, state.range(0));
            if (kHold == Hold::kOpen) theHold.Begin();
        });
        Edit::Act(edited, state.range(0));
        if (kHold == Hold::kOpen) meter.Aside([] { theHold.Accept("edit"); });
    }
}

template <class Edit>
void MakeStep(Edited& edited, std::int64_t keys) {
    Edit::Prepare(edited, keys);
    theHold.Begin();
    Edit::Act(edited, keys);
    theHold.Accept("edit");
}

template <class Edit, Way kWay>
void Retrace(benchmark::State& state) {
    Edited edited;
    MakeStep<Edit>(edited, state.range(0));
    RetraceStep<kWay>(state, state.range(0), edited.Session());
}

template <class Edit>
void Watched(benchmark::State& state) {
    Edited edited;
    MakeStep<Edit>(edited, state.range(0));
    edited.ReadAtEachChange();
    Meter meter(state, 2 * state.range(0));
    for (auto _ : state) {
        edited.Session().Undo();
        edited.Session().Redo();
    }
}

void CopyInMemory(benchmark::State& state) {
    const std::vector<Key> from(static_cast<std::size_t>(state.range(0)));
    std::vector<Key> to(from.size());
    Meter meter(state, state.range(0));
    for (auto _ : state) {
        std::ranges::copy(from, to.begin());
        benchmark::DoNotOptimize(to.data());
        benchmark::ClobberMemory();
    }
}

// Acts on a whole table.

void Load(benchmark::State& state) {
    Edited edited;
    DeleteEverySecond::Prepare(edited, state.range(0) / 2);
    const std::vector<std::byte> bytes = headless::SavedBytes(edited.Control());
    Meter meter(state, state.range(0));
    for (auto _ : state) {
        meter.Aside([&] { edited.Empty(); });
        headless::LoadBytes(bytes, edited.Control());
    }
}

void Sample(benchmark::State& state) {
    Edited source;
    InsertBeforeOthers::Prepare(source, state.range(0));
    const OwnedControl<OpenTransform> sampled(new OpenTransform);
    Meter meter(state, state.range(0));
    for (auto _ : state)
        sampled->Copy(&source.Control());
}

void Select(benchmark::State& state) {
    Edited edited;
    InsertBeforeOthers::Prepare(edited, state.range(0));
    TrackHitTab hits;
    for (std::uint32_t i = 0; i < state.range(0); ++i) {
        const TrackHitRecord hit{i, 0};
        hits.Append(1, &hit);
    }
    Meter meter(state, state.range(0));
    for (auto _ : state)
        edited.Control().SelectKeys(hits, SELKEYS_SELECT);
}

void ChangeParents(benchmark::State& state) {
    Edited edited;
    InsertBeforeOthers::Prepare(edited, state.range(0));
    Meter meter(state, state.range(0));
    for (auto _ : state)
        edited.Control().ChangeParents(0, PoseOfKey(3), PoseOfKey(4), Matrix3());
}

template <class Edit>
void RegisterEdit(const std::string& edit) {
    const auto add = [&](const std::string& name, void (*function)(benchmark::State&)) {
        benchmark::RegisterBenchmark((name + "/ours").c_str(), function)->Apply(EditedKeyCounts);
    };
    add(edit, Do<Edit, Hold::kNone>);
    add(edit + ", held", Do<Edit, Hold::kOpen>);
    add("undo " + edit, Retrace<Edit, Way::kUndo>);
    add("redo " + edit, Retrace<Edit, Way::kRedo>);
    add("watched " + edit, Watched<Edit>);
}

BENCHMARK(CopyInMemory)->Name("copy keys in memory/plain")->Apply(EditedKeyCounts);
BENCHMARK(Load)->Name("load keys/ours")->Apply(EditedKeyCounts);
BENCHMARK(Sample)->Name("sample a controller/ours")->Apply(EditedKeyCounts);
BENCHMARK(Select)->Name("select keys/ours")->Apply(EditedKeyCounts);
BENCHMARK(ChangeParents)->Name("change parents/ours")->Apply(EditedKeyCounts);

[[maybe_unused]] const bool editsAreRegistered = [] {
    RegisterEdit<DeleteEverySecond>("delete keys");
    RegisterEdit<InsertBeforeOthers>("insert before");
    RegisterEdit<InsertAtRandom>("insert at random");
    return true;
}();

}  // namespace
