#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "platform/platform_api.h"

namespace platform {

// A program to be run to its end, without a shell.
struct ChildRun {
    std::filesystem::path program;
    std::vector<std::string> arguments;  // narrow text
    std::filesystem::path output;        // a file for all that it prints, errors included
    double seconds = 60;                 // after which it is ended, with what it has started

    // Asked now and then; true: it is ended at once, with what it has started.
    bool (*isGivenUp)() = [] { return false; };
};

struct ChildEnding {
    int status = 0;      // if it ended by itself
    std::string whyNot;  // else what became of it, as "ended by signal 11 (Segmentation fault)"
};

PLATFORM_API ChildEnding RunChild(const ChildRun& run);

// A word as it is typed into the system's shell, behind the name of a command.
PLATFORM_API std::string AsTyped(const std::string& word);

// A file, or a folder, as a word that no program takes for an option.
inline std::string WordOfFile(const std::string& path) {
    return path.starts_with('-') ? "./" + path : path;
}

}  // namespace platform
