#pragma once

#include <span>

// What of a row is to be at most some number. Times are those of one operation.
enum class Figure {
    kNone,         // the work is measured and has nothing to reach
    kRatio,        // our time in the peer's
    kNanoseconds,  // our time
    kAllocations,
    kBytes,
    kGrowth,        // our time at ten times the size, in that at the size
    kInstructions,  // by callgrind, which is asked for
};

// One line of the table of what every work is to reach; bench/targets.cpp has the table.
struct Target {
    const char* work;
    const char* peer;  // who does the same beside us; empty where our figure alone counts
    Figure figure = Figure::kNone;
    double atMost = 0;
};

std::span<const Target> Targets();
