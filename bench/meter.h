#pragma once

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>

#include "tests/support/allocations.h"

// The names of the counters that a benchmark shows. Allocations and bytes are for one operation.
inline constexpr const char* kAllocationsCounter = "allocations";
inline constexpr const char* kBytesCounter = "bytes";
inline constexpr const char* kOperationsCounter = "operations";

// Each stretch of work that is measured begins with the one and ends with the other: callgrind
// counts between the two.
extern "C" void MeasuringBegins();
extern "C" void MeasuringEnds();

// Counts what the loop of a benchmark allocates, from its own creation to its end, and shows that
// and the time for each of the operations of which one iteration consists.
class Meter {
  public:
    Meter(benchmark::State& state, std::int64_t operationsInIteration)
        : state_(state), operations_(operationsInIteration), before_(Allocations()) {
        MeasuringBegins();
    }
    ~Meter() {
        MeasuringEnds();
        const std::int64_t operations = state_.iterations() * operations_;
        const std::size_t measured = Allocations() - before_ - aside_;
        state_.SetItemsProcessed(operations);
        state_.counters[kOperationsCounter] = static_cast<double>(operations);
        state_.counters[kAllocationsCounter] =
            static_cast<double>(measured) / static_cast<double>(operations);
    }
    Meter(const Meter&) = delete;
    Meter& operator=(const Meter&) = delete;

    // Work between iterations that is not measured.
    template <class Work>
    void Aside(Work work) {
        state_.PauseTiming();
        MeasuringEnds();
        const std::size_t before = Allocations();
        work();
        aside_ += Allocations() - before;
        MeasuringBegins();
        state_.ResumeTiming();
    }

    // Memory that all operations of one iteration have left allocated.
    void ShowBytes(std::size_t bytes) {
        state_.counters[kBytesCounter] =
            static_cast<double>(bytes) / static_cast<double>(operations_);
    }

  private:
    benchmark::State& state_;
    std::int64_t operations_;
    std::size_t before_;
    std::size_t aside_ = 0;
};

// Measures work that gives something. It is done once ahead, so that nobody pays for putting in
// order what the one before has freed.
void MeasureRepeated(benchmark::State& state, std::int64_t operations, auto work) {
    benchmark::DoNotOptimize(work());
    const Meter meter(state, operations);
    for (auto _ : state)
        benchmark::DoNotOptimize(work());
}
