#pragma once

#include <string>
#include <vector>

#include "headless/headless_api.h"

// The stand-in host survives whatever its guests (plug-ins, and a Core through them) ask of it.
// What a real host need not survive, or would answer otherwise, it writes into a book of breaches,
// as the validation layers of graphics interfaces do.
namespace headless {

struct Breach {
    std::string what;   // "no hold is open"
    std::string call;   // what was asked for: "Hold::Accept"
    std::string event;  // what the host was about, innermost first; empty: nothing
};

// In one line: "Hold::Accept: no hold is open (notification 12, undo)".
HEADLESS_API std::string ToLine(const Breach& breach);

// Takes what has been written since the last time, in the order in which it happened. The book is
// the process's, and outlives a session.
HEADLESS_API std::vector<Breach> TakeBreaches();

// The same, a line each.
HEADLESS_API std::vector<std::string> TakeBreachLines();

}  // namespace headless
