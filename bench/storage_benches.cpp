// Keys on their way to and from storage: of one controller in memory, and of a whole scene on the
// disk. What the peers do is the least that moving so many bytes can cost.

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "bench/bench_world.h"
#include "bench/meter.h"
#include "bench/tracks.h"
#include "host/interface.h"
#include "host/object.h"

namespace {

constexpr std::size_t kKeyBytes = sizeof(TarvoKey<Matrix3>);

// One chunk in memory that is there beforehand.
class MemoryChunk final : public ISave, public ILoad {
  public:
    explicit MemoryChunk(std::size_t room) : bytes_(room) {}
    void Rewind() { at_ = 0; }

    IOResult BeginChunk(std::uint16_t id) override {
        id_ = id;
        return IO_OK;
    }
    IOResult EndChunk() override { return IO_OK; }
    IOResult Write(const void* bytes, std::uint32_t count, std::uint32_t* written) override {
        if (written) *written = count;
        std::memcpy(Take(count), bytes, count);
        return IO_OK;
    }
    IOResult WriteCString(const char*) override { return IO_ERROR; }

    IOResult OpenChunk() override { return IO_OK; }
    std::uint16_t CurChunkID() override { return id_; }
    IOResult CloseChunk() override { return IO_OK; }
    IOResult Read(void* bytes, std::uint32_t count, std::uint32_t* read) override {
        if (read) *read = count;
        std::memcpy(bytes, Take(count), count);
        return IO_OK;
    }
    IOResult ReadCStringChunk(char**) override { return IO_ERROR; }

  private:
    std::byte* Take(std::size_t count) {
        at_ += count;
        return bytes_.data() + at_ - count;
    }

    std::vector<std::byte> bytes_;
    std::size_t at_ = 0;
    std::uint16_t id_ = 0;
};

// Room for the keys, the cached key, and what stands in front of them.
MemoryChunk ChunkFor(std::int64_t keys) {
    return MemoryChunk((static_cast<std::size_t>(keys) + 2) * kKeyBytes);
}

void SaveKeys(benchmark::State& state) {
    const BenchWorld world;
    const OwnedControl<OpenTransform> control(new OpenTransform);
    FillWithTake(*control, state.range(0));
    MemoryChunk chunk = ChunkFor(state.range(0));
    Meter meter(state, state.range(0));
    for (auto _ : state) {
        chunk.Rewind();
        control->Save(&chunk);
        benchmark::ClobberMemory();
    }
}

void LoadKeys(benchmark::State& state) {
    const BenchWorld world;
    const OwnedControl<OpenTransform> control(new OpenTransform);
    FillWithTake(*control, state.range(0));
    MemoryChunk chunk = ChunkFor(state.range(0));
    control->Save(&chunk);
    Meter meter(state, state.range(0));
    for (auto _ : state) {
        meter.Aside([&] {
            chunk.Rewind();
            control->DeleteKeys(TRACK_DOALL);
        });
        control->Load(&chunk);
    }
    if (control->NumKeys() != state.range(0)) state.SkipWithError("keys are missing");
}

void CopyBytes(benchmark::State& state) {
    const std::vector<std::byte> from(static_cast<std::size_t>(state.range(0)) * kKeyBytes);
    std::vector<std::byte> to(from.size());
    Meter meter(state, state.range(0));
    for (auto _ : state) {
        std::memcpy(to.data(), from.data(), from.size());
        benchmark::DoNotOptimize(to.data());
        benchmark::ClobberMemory();
    }
}

// A scene of which nearly all is keys. An operation is a byte of them.

constexpr std::int64_t kNodes = 30;
constexpr std::int64_t kKeysOfNode = 100'000;
constexpr std::int64_t kBytesOfKeys = kNodes * kKeysOfNode * std::int64_t{kKeyBytes};

// A large scene that stands in a file, and is open.
class StoredScene {
  public:
    StoredScene() : empty_(heapCounts.liveBytes) {
        for (std::int64_t node = 0; node < kNodes; ++node) {
            auto control = std::make_unique<OpenTransform>();
            FillWithTake(*control, kKeysOfNode);
            GetCOREInterface()
                ->CreateObjectNode(CreateNewTriObject())
                ->SetTMController(control.release());
        }
        Save();
        Open();
    }
    void Save() { Note(world_.Session().SaveScene(file_.Path())); }
    void Open() { Note(world_.Session().OpenScene(file_.Path())); }
    const std::string& Error() const { return error_; }
    std::size_t Bytes() const { return heapCounts.liveBytes - empty_; }

  private:
    void Note(const headless::FileOutcome& outcome) {
        if (!outcome.error.empty()) error_ = outcome.error;
    }

    BenchFile file_{"lumiset-bench.scene"};
    BenchWorld world_;
    std::size_t empty_;
    std::string error_;
};

void SaveScene(benchmark::State& state) {
    StoredScene scene;
    const AllocationPeak peak;
    const std::size_t bytes = scene.Bytes();
    Meter meter(state, kBytesOfKeys);
    for (auto _ : state)
        scene.Save();
    meter.ShowBytes(bytes + peak.Bytes());
    if (!scene.Error().empty()) state.SkipWithError(scene.Error().c_str());
}

void OpenScene(benchmark::State& state) {
    StoredScene scene;
    Meter meter(state, kBytesOfKeys);
    for (auto _ : state)
        scene.Open();
    if (!scene.Error().empty()) state.SkipWithError(scene.Error().c_str());
}

struct Closing {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using OpenFile = std::unique_ptr<std::FILE, Closing>;

enum class Flushed { kNo, kYes };

bool WriteWhole(const std::string& path, std::span<const std::byte> bytes, Flushed flushed) {
    const OpenFile file(std::fopen(path.c_str(), "wb"));
    if (!file || std::fwrite(bytes.data(), 1, bytes.size(), file.get()) != bytes.size())
        return false;
    return flushed == Flushed::kNo ||
           (std::fflush(file.get()) == 0 && fsync(fileno(file.get())) == 0);
}

bool ReadWhole(const std::string& path, std::span<std::byte> bytes) {
    const OpenFile file(std::fopen(path.c_str(), "rb"));
    return file && std::fread(bytes.data(), 1, bytes.size(), file.get()) == bytes.size();
}

// Whether the bytes are on the disk at the end, as a saved scene is.
template <Flushed kFlushed>
void WritePlainly(benchmark::State& state) {
    const BenchFile file("lumiset-bench.bytes");
    const std::vector<std::byte> bytes(kBytesOfKeys, std::byte{1});
    bool isDone = WriteWhole(file.Path(), bytes, kFlushed);
    Meter meter(state, kBytesOfKeys);
    for (auto _ : state)
        isDone = isDone && WriteWhole(file.Path(), bytes, kFlushed);
    if (!isDone) state.SkipWithError("not written");
}

void ReadPlainly(benchmark::State& state) {
    const BenchFile file("lumiset-bench.bytes");
    std::vector<std::byte> bytes(kBytesOfKeys, std::byte{1});
    bool isDone = WriteWhole(file.Path(), bytes, Flushed::kNo);
    Meter meter(state, kBytesOfKeys);
    for (auto _ : state)
        isDone = isDone && ReadWhole(file.Path(), bytes);
    if (!isDone) state.SkipWithError("not read");
}

BENCHMARK(SaveKeys)->Name("save keys to memory/ours")->Arg(10'000)->Arg(100'000);
BENCHMARK(CopyBytes)->Name("save keys to memory/memcpy")->Arg(10'000)->Arg(100'000);
BENCHMARK(LoadKeys)->Name("load keys from memory/ours")->Arg(10'000)->Arg(100'000);
BENCHMARK(CopyBytes)->Name("load keys from memory/memcpy")->Arg(10'000)->Arg(100'000);
BENCHMARK(SaveScene)->Name("save 180 MB, a byte/ours")->UseRealTime();
BENCHMARK(WritePlainly<Flushed::kNo>)->Name("save 180 MB, a byte/fwrite")->UseRealTime();
BENCHMARK(WritePlainly<Flushed::kYes>)->Name("save 180 MB, a byte/with fsync")->UseRealTime();
BENCHMARK(OpenScene)->Name("open 180 MB, a byte/ours")->UseRealTime();
BENCHMARK(ReadPlainly)->Name("open 180 MB, a byte/fread")->UseRealTime();

}  // namespace
