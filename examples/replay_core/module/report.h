#pragma once

#include <cstddef>
#include <string>

namespace replay {

// What came of a request, for the program that waits for it around the host.
struct Report {
    std::string error;  // one line; empty if all went well

    std::string capture;  // its path
    std::string owner;    // the name under which its nodes are in the scene
    std::size_t joints = 0;
    std::size_t frames = 0;  // recorded now
    double frameSeconds = 0;
    std::size_t nodes = 0;              // of the owner, in the scene
    double maxPositionErrorMetres = 0;  // see recorder/read_back.h
    double recordSeconds = 0;           // of the user's time
};

// Writes lines `key=value`, in the order above behind `status=ok` or `status=error`. A text that
// holds a line end is written with blanks in its place. The file is complete or not there. The
// result is empty, or says in one line what went wrong.
std::string WriteReport(const std::string& path, const Report& report);

}  // namespace replay
