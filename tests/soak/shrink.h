#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tests/soak/soak.h"

// Lives played in a process of their own, so that whatever ends one ends that process alone, and
// shrunk to the fewest steps that end in the same way.
namespace soak {

using StepChoices = std::array<std::uint8_t, kStepBytes>;
using Life = std::vector<StepChoices>;

Life ReadLife(const std::string& file);

struct Ending {
    bool isGood = false;
    std::size_t step = 0;   // the last that was begun
    std::string fault;      // what tells one bad ending from another
    std::string said;       // all that was written
    std::string lastWords;  // the end of it
};

// The program that plays a life, and a file that it may use, with others of the same beginning.
struct Stage {
    std::string program;
    std::string file;

    Ending Play(const Life& life) const;
};

Life Shrink(const Stage& stage, Life life, const Ending& ending);

}  // namespace soak
