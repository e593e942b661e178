#pragma once

#include <cstdint>
#include <iosfwd>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "command/checks/check_stage.h"

// What a Core is put through by `check-core`.
namespace headless {

inline constexpr int kStrictest = 10;

// A check is one life of host and Core. It throws a Failure or NotApplicable, or returns.
struct Check {
    std::string_view name;
    int level;              // of the strictness from which on it is made
    std::string_view help;  // what happens in it
    void (*act)(CheckStage& stage);
    bool isRandom = false;  // goes by the seed
};

// By their levels. The first tells whether the Core comes up at all.
const std::vector<Check>& Checks();

// Those of a file each.
std::span<const Check> QuietChecks();   // a Core and a person who wait for each other
std::span<const Check> StateChecks();   // what is kept, and comes back
std::span<const Check> UnrulyChecks();  // a person who does not wait, and things that are odd
std::span<const Check> RandomChecks();  // anything, at any moment

enum class Verdict { kPassed, kFaulty, kNotApplicable };

struct CheckOutcome {
    std::string name;
    int level = 0;
    std::uint64_t seed = 0;
    Verdict verdict = Verdict::kPassed;
    std::string why{};    // of another verdict, in one line
    std::string alone{};  // the command that makes it alone
    std::string tape{};   // which a failed check leaves, and what it told beside it
    std::string log{};
    double seconds = 0;
};

std::string_view Word(Verdict verdict);

// The line that a process ends with which makes one check; the one that started it reads that.
void TellAlone(std::ostream& out, const CheckOutcome& outcome);

struct CheckOptions {
    GuestChoice guests;   // the Core
    std::string folder;   // for tapes and what else a check writes, and one that fails leaves
    std::string passing;  // for all that a check writes in a process of its own, until it is over
    std::uint64_t seed = 1;
    double secondsEach = 60;
};

// What another process has told into that file, with the line ends of text.
std::string ToldInto(const std::string& log);

// In this process, with the watch and a tape.
CheckOutcome MakeCheck(const Check& check, const CheckOptions& options);

// In a process of its own, which can crash or hang. Where Ctrl-C ends that, the outcome says
// nothing.
CheckOutcome MakeCheckApart(const Check& check, const CheckOptions& options);

}  // namespace headless
