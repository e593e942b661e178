#pragma once

#include <string>

#include "platform/tools/script_parser.h"

// The C++ source that registers a script's resources with the platform, for the module that it is
// compiled into. Reads the files of the data resources; throws ScriptError, with `path` as the
// script's name, if one cannot be read.
std::string WriteTable(const ResourceScript& script, const std::string& path);
