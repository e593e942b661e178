#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "recorder/tape/tape_writer.h"

// What the loadable recorder is told: by variables of the environment, and by a text file beside it
// where those say nothing. A line of the file is a name, "=" and a value; # begins a comment, and
// %NAME% stands for a variable of the environment. Paths that are not whole begin at the module's
// folder.
namespace recorder {

inline constexpr char kSettingsFile[] = "recorder.txt";

// Each beside its name in the file.
inline constexpr char kCoreVariable[] = "LUMISET_RECORD_CORE";    // core: the real Core's library
inline constexpr char kTapeVariable[] = "LUMISET_RECORD_TAPE";    // tape: its file; none if empty
inline constexpr char kLimitVariable[] = "LUMISET_RECORD_LIMIT";  // limit: as 500M or 2G
inline constexpr char kWatchVariable[] = "LUMISET_RECORD_WATCH";  // watch: yes or no

struct ModuleSettings {
    std::filesystem::path core;
    TapeSettings tape;  // an empty path for none
    bool watches = false;
    std::vector<std::string> mistakes;  // what could not be read, and where, a line each
};

ModuleSettings ReadSettings(const std::filesystem::path& folder);

}  // namespace recorder
