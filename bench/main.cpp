#include <benchmark/benchmark.h>
#include <malloc.h>

#include <algorithm>
#include <iomanip>
#include <iostream>
#include <string>
#include <vector>

#include "bench/meter.h"
#include "headless/breaches.h"

namespace {

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

constexpr double kNanosecondsInSecond = 1e9;

constexpr int kWorkWidth = 26;
constexpr int kSizeWidth = 9;
constexpr int kWhoWidth = 15;
constexpr int kFigureWidth = 12;

double Counter(const benchmark::BenchmarkReporter::Run& run, const char* name) {
    const auto found = run.counters.find(name);
    return found == run.counters.end() ? 0 : found->second.value;
}

void RatioReporter::ReportRuns(const std::vector<Run>& runs) {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
        const double perSecond = Counter(run, "items_per_second");
        if (run.error_occurred || run.run_type != Run::RT_Iteration || perSecond <= 0) continue;
        const std::string& name = run.run_name.function_name;
        const std::size_t slash = name.find('/');
        if (slash == std::string::npos) continue;
        Note(ComparisonOf(name.substr(0, slash), run.run_name.args),
             {name.substr(slash + 1), kNanosecondsInSecond / perSecond,
              Counter(run, kAllocationsCounter), Counter(run, kBytesCounter)});
    }
}

void RatioReporter::Note(Comparison& comparison, const Figures& figures) {
    const auto known = std::ranges::find(comparison.all, figures.who, &Figures::who);
    if (known == comparison.all.end())
        comparison.all.push_back(figures);
    else if (figures.nanoseconds < known->nanoseconds)
        *known = figures;
}

void RatioReporter::Finalize() {
    std::ostream& out = GetOutputStream();
    out << "\nFor one operation. The ratio is to the first of each group: above 1 is slower.\n\n"
        << std::left << std::setw(kWorkWidth) << "work" << std::setw(kSizeWidth) << "keys"
        << std::setw(kWhoWidth) << "who" << std::right << std::setw(kFigureWidth) << "ns"
        << std::setw(kFigureWidth) << "ratio" << std::setw(kFigureWidth) << "allocations"
        << std::setw(kFigureWidth) << "bytes" << '\n'
        << std::fixed;
    for (const Comparison& comparison : comparisons_) {
        const double first = comparison.all.front().nanoseconds;
        for (const Figures& one : comparison.all) {
            out << std::left << std::setw(kWorkWidth) << comparison.work << std::setw(kSizeWidth)
                << comparison.size << std::setw(kWhoWidth) << one.who << std::right
                << std::setprecision(1) << std::setw(kFigureWidth) << one.nanoseconds
                << std::setprecision(2) << std::setw(kFigureWidth) << one.nanoseconds / first
                << std::setprecision(4) << std::setw(kFigureWidth) << one.allocations
                << std::setprecision(0) << std::setw(kFigureWidth) << one.bytes << '\n';
        }
    }
}

RatioReporter::Comparison& RatioReporter::ComparisonOf(const std::string& work,
                                                       const std::string& size) {
    const auto found = std::ranges::find_if(comparisons_, [&](const Comparison& comparison) {
        return comparison.work == work && comparison.size == size;
    });
    if (found != comparisons_.end()) return *found;
    return comparisons_.emplace_back(Comparison{work, size, {}});
}

// Memory that is freed stays with the program, so that nobody pays for the pages that the next one
// works on.
void KeepFreedMemory() {
    constexpr int kMoreThanAnyTrack = 1 << 30;  // bytes
    mallopt(M_MMAP_THRESHOLD, kMoreThanAnyTrack);
    mallopt(M_TRIM_THRESHOLD, kMoreThanAnyTrack);
}

}  // namespace

int main(int count, char** arguments) {
    KeepFreedMemory();
    benchmark::Initialize(&count, arguments);
    if (benchmark::ReportUnrecognizedArguments(count, arguments)) return 1;
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    const std::vector<std::string> breaches = headless::TakeBreachLines();
    for (const std::string& line : breaches)
        std::cerr << "breach: " << line << '\n';
    return breaches.empty() ? 0 : 1;
}
