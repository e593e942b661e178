#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/tools/script_tokens.h"

// Positions and sizes are in dialog units.
struct Area {
    long x = 0;
    long y = 0;
    long width = 0;
    long height = 0;
};

struct ControlDescription {
    std::string windowClass;
    std::string text;
    long id = 0;
    std::uint32_t style = 0;
    Area area;
};

struct DialogDescription {
    long id = 0;
    std::string caption;
    std::uint32_t style = 0;
    Area area;
    std::vector<ControlDescription> controls;
};

struct DataDescription {
    long id = 0;
    std::string type;
    std::string file;  // as found from the script's folder
    int line = 0;
};

struct ResourceScript {
    std::vector<DialogDescription> dialogs;
    std::vector<DataDescription> data;
};

// Understands DIALOG and DIALOGEX with STYLE, EXSTYLE, CAPTION, FONT and their controls, and
// resources of a named type that are kept in a file. Throws ScriptError.
ResourceScript ParseScript(const TokenizedScript& script);
