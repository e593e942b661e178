#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>
#include <vector>

#include "command/core_stage.h"

namespace headless {

// What stands after a verb has done its work on a scene.
struct SceneReport {
    std::string scene;  // the file that was opened
    std::string saved;  // the file that was written; empty for none
    std::size_t nodes = 0;
    std::vector<replay::TakeReport> takes;
    std::vector<std::string> boxes;       // the texts of message boxes
    std::vector<std::string> complaints;  // about files and the Core, a line each
};

// The end of the work on a scene: saves it unless `target` is empty, and asks the Core for its
// takes. Where a Core is wanted and none is there, that is a complaint.
SceneReport SaveAndReport(CoreStage& stage, const std::string& scene, const std::string& target);

void PrintForPerson(std::ostream& out, const SceneReport& report);
void PrintForProgram(std::ostream& out, const SceneReport& report);

}  // namespace headless
