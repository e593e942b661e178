#include "bench/report.h"

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <iostream>
#include <nlohmann/json.hpp>
#include <sstream>
#include <tuple>

#include "bench/meter.h"

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

struct Words {
    const char* name;  // for other programs
    const char* unit;
};

Words WordsOf(Figure figure) {
    switch (figure) {
        case Figure::kRatio:
            return {"ratio", " x"};
        case Figure::kNanoseconds:
            return {"nanoseconds", " ns"};
        case Figure::kAllocations:
            return {"allocations", " allocations"};
        case Figure::kBytes:
            return {"bytes", " bytes"};
        case Figure::kGrowth:
            return {"growth", " growth"};
        case Figure::kInstructions:
            return {"instructions", " instructions"};
        case Figure::kNone:
            break;
    }
    return {"", ""};
}

// With three digits that count.
std::string Short(double number) {
    std::ostringstream text;
    const double size = std::abs(number);
    const int decimals = size >= 100 || size == 0 ? 0 : size >= 10 ? 1 : size >= 1 ? 2 : 3;
    text << std::fixed << std::setprecision(decimals) << number;
    return text.str();
}

std::string Short(std::optional<double> number) {
    return number ? Short(*number) : "";
}

std::string ToReach(const Target& target) {
    return "<= " + Short(target.atMost) + WordsOf(target.figure).unit;
}

std::string ToReach(const Row& row) {
    std::string all;
    for (const Target* target : row.targets)
        all += (all.empty() ? "" : ", ") + ToReach(*target);
    return all;
}

const char* Verdict(const Row& row) {
    if (row.targets.empty()) return "";
    return row.IsMet() ? "yes" : "NO";
}

std::string NameOf(const Row& row) {
    const std::string size = row.ours->size.empty() ? "" : ", " + row.ours->size;
    return row.ours->work + size + (row.peer ? ", beside " + row.peer->who : "");
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

std::size_t PlaceOf(const Measured& measured) {
    const auto found = std::ranges::find_if(
        Targets(), [&](const Target& one) { return measured.work == one.work; });
    return static_cast<std::size_t>(found - Targets().begin());
}

void AddTargets(Row& row, bool isFirst) {
    for (const Target& target : Targets()) {
        if (target.figure == Figure::kNone || row.ours->work != target.work) continue;
        const bool isOfRow = *target.peer ? row.peer && row.peer->who == target.peer : isFirst;
        if (isOfRow && row.Of(target.figure)) row.targets.push_back(&target);
    }
}

constexpr int kTextWidths[] = {34, 9, 14};
constexpr int kNumberWidth = 10;
constexpr int kGap = 3;

void PrintLine(std::ostream& out, const std::vector<std::string>& texts,
               const std::vector<std::string>& numbers, const std::string& toReach,
               const std::string& isMet) {
    out << std::left;
    for (std::size_t i = 0; i < texts.size(); ++i)
        out << std::setw(kTextWidths[i]) << texts[i];
    out << std::right;
    for (const std::string& number : numbers)
        out << std::setw(kNumberWidth) << number;
    out << std::setw(kGap) << "" << toReach << (isMet.empty() ? "" : "  ") << isMet << '\n';
}

void PrintShortfalls(std::ostream& out, const std::vector<Row>& rows) {
    std::size_t met = 0;
    std::size_t all = 0;
    out << "\nFalls short:\n";
    for (const Row& row : rows) {
        for (const Target* target : row.targets) {
            ++all;
            if (row.IsMet(*target)) {
                ++met;
                continue;
            }
            out << "  " << NameOf(row) << ": " << Short(row.Of(target->figure)) << ", "
                << ToReach(*target) << '\n';
        }
    }
    out << "Reached: " << met << " of " << all << " targets\n";
}

nlohmann::json JsonOf(const Row& row) {
    nlohmann::json object = {{"work", row.ours->work},
                             {"nanoseconds", row.ours->nanoseconds},
                             {"allocations", row.ours->allocations},
                             {"met", row.IsMet()}};
    if (!row.ours->size.empty()) object["size"] = std::stoll(row.ours->size);
    if (row.ours->bytes) object["bytes"] = *row.ours->bytes;
    if (row.growth) object["growth"] = *row.growth;
    if (row.peer) {
        object["peer"] = row.peer->who;
        object["peer_nanoseconds"] = row.peer->nanoseconds;
        object["ratio"] = *row.Of(Figure::kRatio);
    }
    for (const Target* target : row.targets)
        object["at_most"][WordsOf(target->figure).name] = target->atMost;
    return object;
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
        for (std::size_t i = first; i < rows.size(); ++i)
            AddTargets(rows[i], i == first);
    }
    std::ranges::stable_sort(rows, {}, [](const Row& row) {
        return std::tuple(PlaceOf(*row.ours), row.ours->work, SizeOf(*row.ours));
    });
    return rows;
}

void PrintTable(std::ostream& out, const std::vector<Row>& rows) {
    out << "\nFor one operation: medians, and our time in the peer's (below 1 is faster).\n\n";
    PrintLine(out, {"work", "size", "peer"},
              {"ours, ns", "peer, ns", "ratio", "growth", "allocs", "bytes"}, "to reach", "met");
    for (const Row& row : rows) {
        const auto peers = row.peer ? std::optional(row.peer->nanoseconds) : std::nullopt;
        PrintLine(out, {row.ours->work, row.ours->size, row.peer ? row.peer->who : ""},
                  {Short(row.ours->nanoseconds), Short(peers), Short(row.Of(Figure::kRatio)),
                   Short(row.growth), Short(row.ours->allocations), Short(row.ours->bytes)},
                  ToReach(row), Verdict(row));
    }
    PrintShortfalls(out, rows);
}

void PrintUnmeasured(std::ostream& out, const std::vector<Row>& rows) {
    out << "Not measured:\n";
    for (const Target& target : Targets()) {
        const bool isMeasured =
            target.figure == Figure::kNone || std::ranges::any_of(rows, [&](const Row& row) {
                return std::ranges::find(row.targets, &target) != row.targets.end();
            });
        if (!isMeasured)
            out << "  " << target.work << (*target.peer ? ", beside " : "") << target.peer << ": "
                << ToReach(target) << '\n';
    }
}

std::string ToJson(const std::vector<Row>& rows) {
    nlohmann::json array = nlohmann::json::array();
    for (const Row& row : rows)
        array.push_back(JsonOf(row));
    return array.dump(2) + "\n";
}
