#pragma once

#include <cstddef>
#include <iosfwd>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "command/core_stage.h"

namespace headless {

struct RecordOptions {
    std::vector<std::string> captures;
    double metresPerUnit = 0.056444;  // of the captures' own unit
    double heightMetres = 0;  // of the first figure, which tells the unit instead; 0 for unsaid
    std::string from;         // of each capture, a frame or seconds as 2.5s; empty for its start
    std::string to;           // the same; empty for its end
    std::string start;        // seconds of what is recorded, in the scene; empty for its own
    std::string scene;        // where to save the scene; empty for nowhere
    std::string csv;          // where to write the positions; empty for nowhere
    std::string poses;        // where to write the poses; empty for nowhere
    std::string trace;        // where the plug-in writes its trace; empty for nowhere
    GuestChoice guests;
    bool optimisedController = true;
    double hostUnitsPerMetre = 39.37;
    std::optional<int> frameRate;  // of a new scene
    bool keepsRange = false;       // of the scene; else it holds the takes
    std::string into;       // the scene to record into, in its own units; empty for a new one
    std::string take;       // the name of the take; empty for the capture's own
    bool replaces = false;  // the takes of these names that are there
    bool takesCutCaptures = false;
    bool holdsToGround = false;  // the node "Ground", which is drawn if there is none
    bool followsWithCamera = false;
};

// What came of a capture.
struct CaptureResult {
    replay::CaptureReport report;
    std::size_t framesBetweenTicks = 0;  // of the host, which has their keys at the tick before
    double mostBetweenSeconds = 0;       // by which it has them too early

    bool IsRecorded() const { return report.error.empty(); }
};

struct RecordResult {
    std::vector<CaptureResult> captures;   // all that were asked for
    double saidHeight = 0;                 // metres; 0 for unsaid
    double sceneRate = 0;                  // frames in a second
    std::pair<double, double> sceneRange;  // seconds
    bool holdsToGround = false;            // the lifts tell something
    bool followsWithCamera = false;        // the errors of the lens tell something
    double recordSeconds = 0;
    std::vector<std::string> complaints;  // about captures, scene files and what came of them
    std::string saved;                    // the scene file that was written; empty for none
    bool hasTables = false;               // other files than the scene were written
    bool isFaulty = false;                // the takes are not what they were meant to be
    std::size_t nodes = 0;                // in the scene
    std::size_t keys = 0;  // distinct key times, summed over all of them that are no cameras
    std::size_t undoSteps = 0;
    bool undoIdentical = false;
    bool redoIdentical = false;
    double bytesPerKey = 0;            // in a scene file
    std::size_t hostObjectsAlive = 0;  // after the host has shut down
};

// Starts a host with the plug-in that lies beside the program, opens a scene if one is named, lets
// its Core record captures, with a guide object along the first shape that is there, saves the
// scene, undoes and redoes the recording, and shuts the host down.
RecordResult Record(const RecordOptions& options);

void PrintForPerson(std::ostream& out, const RecordResult& result);
void PrintForProgram(std::ostream& out, const RecordResult& result);

}  // namespace headless
