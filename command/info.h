#pragma once

#include <string>
#include <vector>

#include "command/core_stage.h"
#include "headless/scene_file_view.h"
#include "headless/session.h"

namespace headless {

struct InfoOptions {
    std::string scene;
    Guests guests = Guests::kPluginAndCore;
};

struct InfoResult {
    std::string scene;
    SceneFileView file;

    // What became of the file in a host that opened it; empty if it was to be alone, or could not.
    std::string whyNotOpened;
    std::vector<ClassInFile> keptClasses;          // not loaded, so kept as they were stored
    std::vector<UtilityChunksView> utilityChunks;  // who has taken its own
};

// Reads the file alone, and then opens it with the plug-in and the Core, as far as these are
// wanted. Throws std::runtime_error if the file cannot be read.
InfoResult Info(const InfoOptions& options);

void PrintForPerson(std::ostream& out, const InfoResult& result);
void PrintForProgram(std::ostream& out, const InfoResult& result);

}  // namespace headless
