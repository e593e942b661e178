#pragma once

#include <string>

#include "platform/platform_api.h"

namespace platform {

enum class NewFile { kMade, kNameTaken, kRefused };

// Makes an empty file of that name, which nobody has yet. If it is refused, `reason` gets the
// system's word for it.
PLATFORM_API NewFile MakeNewFile(const std::string& path, std::string& reason);

}  // namespace platform
