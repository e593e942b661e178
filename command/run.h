#pragma once

#include <cstddef>
#include <functional>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "command/core_stage.h"
#include "command/steps.h"

namespace headless {

struct RunOptions {
    std::string scene;  // to be opened first; empty for none
    GuestChoice guests;
    std::vector<Step> steps;
    bool keepsGoing = false;  // behind a step that failed
};

// What came of a step; also of the start, with the opening of the scene, and of the end.
struct StepOutcome {
    std::string step;   // as it was written
    std::string title;  // "step 3 (press 7)"
    std::string note;   // a few words on what came of it
    bool isOver = false;
    std::string error;  // why it failed; empty if it did not
    StageNews news;

    // How the scene stands then; nothing of it after the end.
    std::size_t nodes = 0;
    std::vector<std::string> undo;  // labels, the next one first
    std::vector<std::string> redo;
};

struct RunResult {
    std::string core;  // the library
    std::string scene;
    StepOutcome start;
    std::vector<StepOutcome> steps;  // those that were done
    StepOutcome end;
    std::vector<std::string> saved;    // files
    bool hasUnsavedChanges = false;    // the scene is not as it was opened or saved last
    std::size_t hostObjectsAlive = 0;  // after the host has shut down
    std::optional<std::vector<recorder::Finding>> findings;  // of a watch, if there was one

    // What there is to press, if there were no steps.
    std::vector<std::string> utilities;
    std::vector<PageView> pages;
    std::vector<OptionView> options;
};

// Starts a host with plug-in and Core and does the steps until one fails. `tell` hears of the
// result when the start is over, and when a step, the newest, begins and is over. A Failure is
// thrown for what fails before the first step.
RunResult Run(const RunOptions& options, const std::function<void(const RunResult&)>& tell);

// Empty, or which step failed and why, in one line.
std::string FailureOf(const RunResult& result);

// For a person, what came of the start or of the newest step, and then of the end.
void PrintNewest(std::ostream& out, const RunResult& result);
void PrintForPerson(std::ostream& out, const RunResult& result);

void PrintForProgram(std::ostream& out, const RunResult& result);

}  // namespace headless
