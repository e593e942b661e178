// lumiset-bench [FILTER] [--json [FILE]] [--list] [OPTION]...
// FILTER is a regular expression for names; further options are those of Google Benchmark.

#include <benchmark/benchmark.h>
#include <malloc.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "bench/meter.h"
#include "bench/report.h"
#include "bench/table.h"
#include "headless/breaches.h"

// Marks that callgrind finds by their names, so they must stay functions.
extern "C" __attribute__((noinline)) void MeasuringBegins() {
    benchmark::ClobberMemory();
}
extern "C" __attribute__((noinline)) void MeasuringEnds() {
    benchmark::ClobberMemory();
}

namespace {

struct Options {
    std::string filter = ".";
    bool isList = false;
    bool isJson = false;
    std::string jsonFile;  // empty: the standard output
    std::vector<char*> others;
};

Options ReadOptions(int count, char** arguments) {
    // Enough for ratios. What is asked for comes later, and so wins.
    static char defaults[][64] = {"--benchmark_repetitions=7", "--benchmark_min_time=0.03",
                                  "--benchmark_enable_random_interleaving=true"};
    Options options;
    options.others = {arguments[0], defaults[0], defaults[1], defaults[2]};
    for (int i = 1; i < count; ++i) {
        const std::string argument = arguments[i];
        if (argument == "--list") {
            options.isList = true;
        } else if (argument == "--json") {
            options.isJson = true;
            if (i + 1 < count && arguments[i + 1][0] != '-') options.jsonFile = arguments[++i];
        } else if (argument[0] == '-') {
            options.others.push_back(arguments[i]);
        } else {
            options.filter = argument;
        }
    }
    return options;
}

// False: an option is not known.
bool Initialize(std::vector<char*> arguments) {
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    return !benchmark::ReportUnrecognizedArguments(count, arguments.data());
}

// The names of the benchmarks that the filter lets through.
std::vector<std::string> NamesOf(const Options& options) {
    char list[] = "--benchmark_list_tests=true";
    Initialize({options.others[0], list});
    std::stringstream lines;
    Collector lister;
    lister.SetOutputStream(&lines);
    lister.SetErrorStream(&std::cerr);
    benchmark::RunSpecifiedBenchmarks(&lister, options.filter);
    char run[] = "--benchmark_list_tests=false";
    Initialize({options.others[0], run});
    std::vector<std::string> names;
    for (std::string line; std::getline(lines, line);)
        names.push_back(line);
    return names;
}

// A regular expression for just these names.
std::string Exactly(const std::vector<std::string>& names) {
    std::string pattern;
    for (const std::string& name : names) {
        pattern += pattern.empty() ? "^(" : "|";
        for (const char c : name) {
            if (std::strchr(".+*?()[]{}|^$\\", c)) pattern += '\\';
            pattern += c;
        }
    }
    return pattern + ")$";
}

std::string WorkOf(const std::string& name) {
    return name.substr(0, name.find('/'));
}

// The repetitions of one work are mixed with each other, not with those of another work: what is
// compared is measured close together, whatever else the machine does meanwhile.
void RunWorkByWork(std::vector<std::string> names, Collector& collector) {
    std::ranges::stable_sort(names, {}, WorkOf);
    for (auto first = names.begin(); first != names.end();) {
        const auto last = std::find_if(
            first, names.end(), [&](const auto& name) { return WorkOf(name) != WorkOf(*first); });
        benchmark::RunSpecifiedBenchmarks(&collector, Exactly({first, last}));
        first = last;
    }
}

// Memory that is freed stays with the program, so that nobody pays for the pages that the next one
// works on. False: the system refuses.
bool KeepFreedMemory() {
    constexpr int kMostOfTheSystem = 32 << 20;  // bytes of a block; larger ones are let go
    constexpr int kMoreThanAll = 1 << 30;
    return mallopt(M_MMAP_THRESHOLD, kMostOfTheSystem) != 0 &&
           mallopt(M_TRIM_THRESHOLD, kMoreThanAll) != 0;
}

// Known before anything is measured.
bool CanWrite(const std::string& file) {
    const bool can = file.empty() || std::ofstream(file, std::ios::app).good();
    if (!can) std::cerr << "lumiset-bench: cannot write " << file << '\n';
    return can;
}

// A file of Google Benchmark's own begins anew with each work, so that it would have the last
// alone.
bool CanKeepAll(const Options& options, const std::vector<std::string>& names) {
    const bool isAsked = std::ranges::any_of(options.others, [](std::string_view option) {
        return option.starts_with("--benchmark_out=");
    });
    const bool isOneWork = std::ranges::all_of(
        names, [&](const auto& name) { return WorkOf(name) == WorkOf(names.front()); });
    if (isAsked && !isOneWork)
        std::cerr << "lumiset-bench: --benchmark_out is for one work alone; use --json FILE\n";
    return !isAsked || isOneWork;
}

// The table goes to the standard output unless that is for other programs. False: the file for
// these could not be written.
bool Show(const Options& options, const std::vector<Row>& rows) {
    const bool isForPrograms = options.isJson && options.jsonFile.empty();
    std::ostream& out = isForPrograms ? std::cerr : std::cout;
    PrintTable(out, rows);
    if (options.filter == Options().filter) PrintUnmeasured(out, rows);
    if (isForPrograms) std::cout << ToJson(rows);
    if (options.jsonFile.empty()) return true;
    std::ofstream file(options.jsonFile);
    file << ToJson(rows) << std::flush;
    if (!file) std::cerr << "lumiset-bench: cannot write " << options.jsonFile << '\n';
    return !file.fail();
}

}  // namespace

int main(int count, char** arguments) {
    if (!KeepFreedMemory()) std::cerr << "lumiset-bench: freed memory goes to the system\n";
    const Options options = ReadOptions(count, arguments);
    const std::vector<std::string> names = NamesOf(options);
    if (names.empty() || !Initialize(options.others) || !CanKeepAll(options, names) ||
        !CanWrite(options.jsonFile))
        return 2;
    if (options.isList) {
        for (const std::string& name : names)
            std::cout << name << '\n';
        return 0;
    }
    Collector collector;
    collector.SetErrorStream(&std::cerr);
    collector.SetOutputStream(&std::cout);
    RunWorkByWork(names, collector);
    benchmark::Shutdown();
    const bool isShown = Show(options, MakeRows(collector.All()));
    const std::vector<std::string> breaches = headless::TakeBreachLines();
    for (const std::string& line : breaches)
        std::cerr << "breach: " << line << '\n';
    return isShown && breaches.empty() && !collector.HasFailed() ? 0 : 1;
}
