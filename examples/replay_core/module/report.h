#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "replay_core/look/node_look.h"
#include "replay_core/recorder/into_take.h"

namespace replay {

// What came of a request, for the program that waits for it around the host.
struct Report {
    struct Capture {
        std::string path;
        std::string owner;  // the take that has its nodes
        std::size_t joints = 0;
        std::size_t frames = 0;  // recorded now
        double frameSeconds = 0;
        std::size_t nodes = 0;         // of the take, in the scene
        std::size_t liftedFrames = 0;  // that were lifted onto the ground
        double maxLiftMetres = 0;
        double maxPositionErrorMetres = 0;  // see recorder/read_back.h
        double maxFieldOfViewErrorDegrees = 0;
        double maxTargetDistanceErrorMetres = 0;
        std::optional<KeptTail> kept;  // of what was recorded before
    };
    struct Merge {
        std::string path;
        std::size_t nodes = 0;  // that the host brought in
    };
    struct Take {
        std::string name;
        std::string parent;                 // the take that it belongs to; empty for none
        std::vector<std::string> captures;  // paths, each once
        std::size_t nodes = 0;              // in the scene
        std::vector<std::string> missing;   // names of nodes that were not found there
    };

    std::string error;                  // one line; empty if all went well
    std::vector<std::string> warnings;  // of what was done and is as it should be, a line each
    std::vector<std::string> faults;    // the same of what is not
    std::vector<Capture> captures;
    double recordSeconds = 0;  // of the user's time, for all captures
    std::vector<Merge> merges;
    std::vector<NodeLook> looks;
    std::vector<Take> takes;  // all that are in the scene when the work is done
};

// Writes lines `key=value`: `status=ok` or `status=error`, then the fields above in their order. A
// list is a line with its length, such as `captures=2`, and the fields of its entries behind
// `capture.1.`, `capture.2.`; the entry of a list of texts is `take.1.missing.1`. What is
// true is 1 and what is false 0; numbers of one entry stand behind each other with blanks between.
// Behind `look.1.mesh` and the other kinds of snapshots stands whether one is lent, and only then
// the fields of that kind. A text that holds a line end is written with blanks in its place. The
// file is complete or not there. The result is empty, or says in one line what went wrong.
std::string WriteReport(const std::string& path, const Report& report);

}  // namespace replay
