#pragma once

#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "command/core_stage.h"

// The steps of `run`: what a person does to the host and to the Core, and what is expected then, a
// line each. Its words are parted by blanks; a word in double quotes may hold blanks, and a doubled
// quote inside one stands for one. What follows a word that begins with # is a comment.
namespace headless {

// What steps work on.
struct StepScene {
    CoreStage& stage;
    std::vector<std::string> boxes;  // the texts of message boxes that nobody expected so far
};

// Does a step; gives a few words on what came of it, or none. Throws a Failure if that failed.
using StepAct = std::function<std::string(StepScene&)>;

using StepWords = std::span<const std::string>;

enum class StepFile {
    kNone,
    kOpened,
    kMerged,
    kSaved,  // may take the place of a scene that was read
    kDrawn,
};

// A kind of step, from which reading, help and manual are made.
struct StepKind {
    std::string_view name;       // one word, or two that begin with "expect"
    std::string_view arguments;  // as help shows them
    std::string_view help;
    std::size_t fewest;  // arguments
    std::size_t most;
    StepAct (*make)(StepWords arguments);  // throws a Failure on what it cannot read
    StepFile file = StepFile::kNone;       // what its first argument is
};
std::span<const StepKind> StepKinds();

// Its name with its arguments.
std::string Title(const StepKind& kind);

// A step that was read and has not been done.
struct Step {
    std::string text;   // as it was written
    std::string title;  // "step 3 (press 7)", behind its file and line if it is of a script
    StepAct act;
    StepFile use = StepFile::kNone;
    std::string file;
};

// Each throws a Failure on the first step that cannot be read. Lines of a script that hold nothing
// or a comment alone are no steps.
std::vector<Step> StepsOfOptions(const std::vector<std::string>& texts);
std::vector<Step> StepsOfScript(const std::string& path);

}  // namespace headless
