#include <benchmark/benchmark.h>
#include <malloc.h>

#include <iostream>
#include <string>
#include <vector>

#include "bench/ratio_reporter.h"
#include "headless/breaches.h"

namespace {

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
