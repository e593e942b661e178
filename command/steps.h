#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "command/core_space.h"
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

// START:END or START:END:STEP in seconds, END included.
struct MomentRange {
    double start = 0;
    double end = 0;
    double step = 0;  // a frame if it is 0
};

// What was said behind a step's name, each by the argument that it stands for.
struct StepWords {
    std::vector<std::string> texts;  // ID, NAME, FILE, TEXT and LABEL, in this order
    std::size_t count = 1;           // N
    double seconds = 0;              // SECONDS
    double tolerance = 0.001;        // TOLERANCE, in metres
    CorePlace place;                 // X,Y,Z
    MomentRange moments;             // START:END[:STEP]
};

enum class StepFile {
    kNone,
    kOpened,
    kMerged,
    kSaved,  // may take the place of a scene that was read
    kDrawn,
};

// A kind of step, from which reading, help, manual and completion are made.
struct StepKind {
    std::string_view name;       // one word, or two that begin with "expect"
    std::string_view arguments;  // as above; in brackets what can be left out, dots for several
    std::string_view help;
    // Gives a few words on what came of it, or none. Throws a Failure if the step failed.
    std::string (*act)(StepScene& scene, const StepWords& words);
    StepFile file = StepFile::kNone;  // what its first argument is
};

// All of them: on the Core and its panel, on time, scene and files, and what is expected.
const std::vector<StepKind>& StepKinds();
std::span<const StepKind> PanelSteps();
std::span<const StepKind> SceneSteps();
std::span<const StepKind> ExpectationSteps();

// Its name with its arguments.
std::string Title(const StepKind& kind);

// A step that was read and has not been done.
struct Step {
    std::string text;   // as it was written
    std::string title;  // "step 3 (press 7)", behind its file and line if it is of a script
    const StepKind* kind;
    StepWords words;

    // For a kind that has one.
    const std::string& File() const { return words.texts.front(); }
};

// Each throws a Failure on the first step that cannot be read. Lines of a script that hold nothing
// or a comment alone are no steps.
std::vector<Step> StepsOfOptions(const std::vector<std::string>& texts);
std::vector<Step> StepsOfScript(const std::string& path);

// Take a step's line apart, and read the words behind its name, as those two do. Nothing is left of
// a comment.
std::vector<std::string> SplitIntoWords(std::string_view line);
StepWords ReadWords(const StepKind& kind, std::span<const std::string> words);

// Whether a word is a number, where else a text could stand.
bool IsId(const std::string& word);

}  // namespace headless
