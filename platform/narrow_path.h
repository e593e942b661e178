#pragma once

#include <filesystem>
#include <string>

#include "platform/platform_api.h"

namespace platform {

// Paths cross the contracts as narrow text in the code page of the system, which is not what
// std::filesystem takes narrow text for on Windows. Text that is no text of that code page stands
// for a path that cannot be there.
PLATFORM_API std::filesystem::path FromNarrow(const std::string& path);

// Empty if the code page lacks a letter of the path.
PLATFORM_API std::string ToNarrow(const std::filesystem::path& path);

// As much of a path as a message can tell: letters that the code page lacks are '?', which no path
// on Windows has.
PLATFORM_API std::string Shown(const std::filesystem::path& path);

}  // namespace platform
