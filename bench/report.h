#pragma once

#include <benchmark/benchmark.h>

#include <optional>
#include <string>
#include <vector>

#include "bench/targets.h"

// What was measured of one doer of a work at one size. A benchmark's name is its work, a slash, who
// does it, and after another slash the size if the work has sizes.
struct Measured {
    std::string work;
    std::string who;
    std::string size;
    double nanoseconds = 0;  // for one operation: the median of the repetitions
    double allocations = 0;
    std::optional<double> bytes;
};

// A line of the table: a work at a size as we do it, beside a peer, or alone where nobody else does
// it.
struct Row {
    const Measured* ours = nullptr;
    const Measured* peer = nullptr;
    std::optional<double> growth;  // of our time for an operation, at ten times the size
    std::vector<const Target*> targets;

    std::optional<double> Of(Figure figure) const;
    bool IsMet(const Target& target) const;
    bool IsMet() const;
};

// Takes in what the benchmarks show, and tells of each as it ends.
class Collector final : public benchmark::BenchmarkReporter {
  public:
    bool ReportContext(const Context&) override { return true; }
    void ReportRuns(const std::vector<Run>& runs) override;

    const std::vector<Measured>& All() const { return all_; }
    bool HasFailed() const { return hasFailed_; }

  private:
    std::vector<Measured> all_;
    bool hasFailed_ = false;
};

// In the order of the targets; works without one come last. The rows point into what they are made
// of.
std::vector<Row> MakeRows(const std::vector<Measured>& all);
