#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "headless/scene_file_view.h"
#include "headless/session.h"

namespace headless {

struct InfoResult {
    std::string scene;
    SceneFileView file;

    // What became of the file in a host that opened it; empty if it was to be alone, or could not.
    std::string whyNotOpened;
    std::vector<ClassInFile> keptClasses;          // not loaded, so kept as they were stored
    std::vector<UtilityChunksView> utilityChunks;  // who has taken its own
};

void PrintForPerson(std::ostream& out, const InfoResult& result);
void PrintForProgram(std::ostream& out, const InfoResult& result);

}  // namespace headless
