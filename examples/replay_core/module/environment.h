#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "replay/report.h"
#include "replay_core/motion/capture_part.h"
#include "replay_core/motion/pose.h"
#include "replay_core/recorder/host_time.h"
#include "replay_core/recorder/look.h"

namespace replay {

// Whatever a capture holds then still fits into the host's single precision.
inline constexpr double kMostMetresPerUnit = 1e6;

// What this Core is asked to do when its window is called for. A Core with a window of its own
// would have the user choose; this one reads its process's environment, so that nothing of it
// passes through the host. One thing is done: the first of the four that is asked for; the report
// tells of the scene in any case.
struct Request {
    std::string error;  // one line; empty if the environment makes sense

    std::vector<std::string> mergedScenes;  // paths
    std::optional<SampleTimes> sampleTimes;
    std::vector<std::uint32_t> inspectedNodes;  // the host's handles
    std::vector<std::string> captures;          // paths

    std::vector<std::string> sampledNodes;  // the host's names; all nodes of the takes if empty
    double inspectionSeconds = 0;
    double metresPerUnit = kCmuMetresPerUnit;
    std::optional<double> heightMetres;  // of the first figure, which tells the scale instead
    CapturePart part;                    // of each capture
    std::optional<double> startSeconds;  // of the first frame in the scene; as in the capture if
                                         // not said
    SceneRange range = SceneRange::kGrows;
    std::string take;       // the name of the capture's take; its file's if empty
    bool replaces = false;  // the takes that are there
    bool takesCutCaptures = false;
    std::string csv;     // empty for none
    std::string report;  // empty for none
    std::optional<bool> optimisedControllers;
    bool followsWithCamera = false;
    std::optional<std::uint32_t> ground;  // the host's handle of a node to stand on
    std::optional<std::uint32_t> guide;   // the host's handle of a shape
    bool showsProgress = false;
    bool isInterruptible = false;  // by Ctrl-C
};

// From the variables of replay/request.h, which README.md explains.
Request ReadEnvironment();

// Writes the report as replay/report.h says. The file is complete or untouched. The result is
// empty, or says in one line what went wrong.
std::string WriteReport(const std::string& path, Report& report);

}  // namespace replay
