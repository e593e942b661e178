#pragma once

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

// Shows each benchmark as it ends, and at the end of all a table that sets the peers of one work
// side by side. A benchmark's name is its work, a slash, and who does it; the first to be run on a
// work and a size is what the others are compared with. Of repetitions the fastest counts.
class RatioReporter final : public benchmark::ConsoleReporter {
  public:
    void ReportRuns(const std::vector<Run>& runs) override;
    void Finalize() override;

  private:
    // All for one operation.
    struct Figures {
        std::string who;
        double nanoseconds = 0;
        double allocations = 0;
        double bytes = 0;  // left allocated; 0 where that is not measured
    };
    struct Comparison {
        std::string work;
        std::string size;
        std::vector<Figures> all;
    };

    static void Note(Comparison& comparison, const Figures& figures);
    Comparison& ComparisonOf(const std::string& work, const std::string& size);

    std::vector<Comparison> comparisons_;
};
