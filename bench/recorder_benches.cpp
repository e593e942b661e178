// What the flight recorder costs a recording: the same samples, written by a Core that has the
// adaptor itself, and by one behind the recorder with a tape and with the watch.

#include <benchmark/benchmark.h>

#include <memory>
#include <optional>

#include "adaptor/max_adaptor_interface.h"
#include "bench/bench_world.h"
#include "bench/meter.h"
#include "host/interface.h"
#include "recorder/recorder.h"
#include "recorder/watch/watch.h"

namespace {

enum class Taker { kNone, kTape, kWatch };

// The adaptor as a Core sees it, itself or behind the recorder.
class Between {
  public:
    Between(BenchWorld& world, Taker taker) : adaptor_(MaxAdaptorInterface::GetInstance()) {
        if (taker == Taker::kNone) return;
        if (taker == Taker::kTape) AddTape();
        if (taker == Taker::kWatch) stream_.Add(watch_.emplace());
        recorder_.emplace(stream_, "idle");
        if (tape_) tape_->onNewSegment = [this](const auto& tell) { recorder_->TellObjects(tell); };
        core_ = recorder_->Attach(adaptor_, [&](TVL::AdaptorInterface* adaptor) {
            adaptor_ = adaptor;
            return &world.Core();
        });
    }
    ~Between() {
        if (recorder_) recorder_->Detach(core_, [](CoreInterface*) {});
    }
    Between(const Between&) = delete;
    Between& operator=(const Between&) = delete;

    TVL::AdaptorInterface& Adaptor() { return *adaptor_; }

  private:
    void AddTape() {
        std::filesystem::remove(file_.Path());
        std::string whyNot;
        tape_ = recorder::TapeWriter::Open({.path = file_.Path()}, whyNot);
        if (!tape_) throw std::runtime_error(whyNot);
        stream_.Add(*tape_);
    }

    TVL::AdaptorInterface* adaptor_;
    CoreInterface* core_ = nullptr;
    BenchFile file_{"lumiset-bench.tape"};
    recorder::Stream stream_;
    std::unique_ptr<recorder::TapeWriter> tape_;
    std::optional<recorder::Watch> watch_;
    std::optional<recorder::Recorder> recorder_;
};

constexpr std::int64_t kTakenSamples = 10'000;

void Write(TVL::CoreNode& node, TVL::CMatrix4& pose) {
    constexpr double kSamplesInSecond = 30;
    for (std::int64_t sample = 0; sample < kTakenSamples; ++sample) {
        TVL::CSnapshot* const snapshot =
            node.AcquireSnapshot(static_cast<double>(sample) / kSamplesInSecond);
        pose[3][0] = static_cast<double>(sample) * 0.01;
        snapshot->SetWorldTransform(pose);
        node.ReleaseSnapshot(snapshot);
    }
}

// A take after the other, each of them into the same keys.
template <Taker kTaker>
void RecordTakes(benchmark::State& state) {
    BenchWorld world;
    Between between(world, kTaker);
    TVL::AdaptorInterface& adaptor = between.Adaptor();
    auto& node = static_cast<TVL::CoreNode&>(
        *adaptor.CreateHelperNode(nullptr, "Hip", nullptr, {}, nullptr));
    TVL::CMatrix4 pose = TVL::CMatrix4::Identity();
    Meter meter(state, kTakenSamples);
    for (auto _ : state) {
        meter.Aside([&] {
            GetCOREInterface()->FlushUndoBuffer();
            adaptor.BeginUndoGroup("Take");
            adaptor.BeginRecordingUnkeyed({});
        });
        Write(node, pose);
        meter.Aside([&] {
            adaptor.EndRecording();
            adaptor.EndUndoGroup();
        });
    }
}

BENCHMARK(RecordTakes<Taker::kTape>)->Name("a sample with a tape/ours");
BENCHMARK(RecordTakes<Taker::kNone>)->Name("a sample with a tape/without");
BENCHMARK(RecordTakes<Taker::kWatch>)->Name("a sample with the watch/ours");
BENCHMARK(RecordTakes<Taker::kNone>)->Name("a sample with the watch/without");

}  // namespace
