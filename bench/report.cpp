#include "bench/report.h"

#include <algorithm>
#include <cmath>
#include <iostream>
#include <tuple>
#include <utility>

#include "bench/meter.h"
#include "bench/table.h"

namespace {

constexpr double kNanosecondsInSecond = 1e9;

double Counter(const benchmark::BenchmarkReporter::Run& run, const char* name) {
    const auto found = run.counters.find(name);
    return found == run.counters.end() ? 0 : found->second.value;
}

double Median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::ranges::nth_element(values, middle);
    return *middle;
}

double SizeOf(const Measured& measured) {
    return measured.size.empty() ? 0 : std::stod(measured.size);
}

// The same of the size below, if there is one.
const Measured* NextSmaller(const Measured& ours, const std::vector<Measured>& all) {
    const Measured* next = nullptr;
    for (const Measured& one : all) {
        const bool isSmaller =
            one.work == ours.work && one.who == ours.who && SizeOf(one) < SizeOf(ours);
        if (isSmaller && (!next || SizeOf(*next) < SizeOf(one))) next = &one;
    }
    return next;
}

// The growth of the time for an operation from one size to the next, as it is at ten times.
std::optional<double> GrowthOf(const Measured& ours, const Measured* smaller) {
    if (!smaller) return std::nullopt;
    const double sizes = std::log10(SizeOf(ours) / SizeOf(*smaller));
    return std::pow(ours.nanoseconds / smaller->nanoseconds, 1 / sizes);
}

// Where the row's work, and its peer, first stand among the targets.
std::pair<std::size_t, std::size_t> PlaceOf(const Row& row) {
    const auto first = [](auto isIt) {
        return static_cast<std::size_t>(std::ranges::find_if(Targets(), isIt) - Targets().begin());
    };
    const auto isWork = [&](const Target& one) { return row.ours->work == one.work; };
    const auto isPeer = [&](const Target& one) {
        return isWork(one) && row.peer && row.peer->who == one.peer;
    };
    return {first(isWork), first(isPeer)};
}

void AddTargets(Row& row, bool isFirst) {
    for (const Target& target : Targets()) {
        if (target.figure == Figure::kNone || row.ours->work != target.work) continue;
        const bool isOfRow = *target.peer ? row.peer && row.peer->who == target.peer : isFirst;
        if (isOfRow && row.Of(target.figure)) row.targets.push_back(&target);
    }
}

}  // namespace

std::optional<double> Row::Of(Figure figure) const {
    switch (figure) {
        case Figure::kRatio:
            if (peer) return ours->nanoseconds / peer->nanoseconds;
            break;
        case Figure::kNanoseconds:
            return ours->nanoseconds;
        case Figure::kAllocations:
            return ours->allocations;
        case Figure::kBytes:
            return ours->bytes;
        case Figure::kGrowth:
            return growth;
        default:
            break;
    }
    return std::nullopt;
}

bool Row::IsMet(const Target& target) const {
    return Of(target.figure) <= target.atMost;
}

bool Row::IsMet() const {
    return std::ranges::all_of(targets, [this](const Target* target) { return IsMet(*target); });
}

void Collector::ReportRuns(const std::vector<Run>& runs) {
    const std::string name = runs.front().benchmark_name();
    std::vector<double> times;
    for (const Run& run : runs) {
        if (run.run_type != Run::RT_Iteration) continue;
        if (run.error_occurred) {
            GetErrorStream() << name << " FAILED: " << run.error_message << '\n';
            hasFailed_ = true;
            return;
        }
        times.push_back(kNanosecondsInSecond / Counter(run, "items_per_second"));
    }
    if (times.empty()) return;  // what the library makes of the repetitions
    const Run& run = runs.front();
    const std::string& function = run.run_name.function_name;
    const std::size_t slash = function.find('/');
    Measured measured{function.substr(0, slash),
                      function.substr(slash + 1),
                      run.run_name.args,
                      Median(times),
                      Counter(run, kAllocationsCounter),
                      {}};
    if (run.counters.contains(kBytesCounter)) measured.bytes = Counter(run, kBytesCounter);
    GetErrorStream() << name << ": " << Short(measured.nanoseconds) << " ns\n";
    all_.push_back(measured);
}

std::vector<Row> MakeRows(const std::vector<Measured>& all) {
    std::vector<Row> rows;
    for (const Measured& ours : all) {
        if (ours.who != "ours") continue;
        const std::size_t first = rows.size();
        const std::optional<double> growth = GrowthOf(ours, NextSmaller(ours, all));
        for (const Measured& peer : all) {
            if (peer.work == ours.work && peer.size == ours.size && &peer != &ours)
                rows.push_back({&ours, &peer, growth, {}});
        }
        if (rows.size() == first) rows.push_back({&ours, nullptr, growth, {}});
    }
    std::ranges::stable_sort(rows, {}, [](const Row& row) {
        const auto [work, peer] = PlaceOf(row);
        return std::tuple(work, row.ours->work, SizeOf(*row.ours), peer);
    });
    for (std::size_t i = 0; i < rows.size(); ++i)
        AddTargets(rows[i], i == 0 || rows[i - 1].ours != rows[i].ours);
    return rows;
}
