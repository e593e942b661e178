#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace headless {

struct RecordOptions {
    std::vector<std::string> captures;
    double metresPerUnit = 0.056444;  // of the captures' own unit
    std::string scene;                // where to save the scene; empty for nowhere
    std::string csv;                  // where to write the positions; empty for nowhere
    std::string poses;                // where to write the poses; empty for nowhere
    std::string trace;                // where the plug-in writes its trace; empty for nowhere
    bool optimisedController = true;
    double hostUnitsPerMetre = 39.37;
    bool progress = false;
};

struct RecordedCapture {
    std::string capture;
    std::size_t joints = 0;
    std::size_t frames = 0;
    double frameSeconds = 0;
    double maxPositionErrorMetres = 0;
};

struct RecordResult {
    std::vector<RecordedCapture> captures;
    double recordSeconds = 0;
    std::vector<std::string> complaints;  // about the scene file
    std::size_t nodes = 0;
    std::size_t keys = 0;  // distinct key times, summed over the joints' nodes
    std::size_t undoSteps = 0;
    bool undoIdentical = false;
    bool redoIdentical = false;
    double bytesPerKey = 0;            // in a scene file
    std::size_t hostObjectsAlive = 0;  // after the host has shut down
};

// Starts a host with the plug-in that lies beside the program, lets its Core record captures,
// saves the scene, undoes and redoes that, and shuts the host down.
RecordResult Record(const RecordOptions& options);

}  // namespace headless
