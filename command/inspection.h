#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "replay/report.h"

namespace headless {

// What the Core sees of nodes of a scene, in the order of the scene.
struct Inspection {
    std::string scene;
    double seconds = 0;
    std::vector<std::string> complaints;  // about the scene file
    std::vector<replay::NodeReport> nodes;
};

void PrintForPerson(std::ostream& out, const Inspection& inspection);
void PrintForProgram(std::ostream& out, const Inspection& inspection);

}  // namespace headless
