#pragma once

#include <string>

#include "platform/platform_api.h"

namespace platform {

// Flushes a finished file to the disk and gives it the place of another in the same folder, whole
// or not at all, whenever the machine may stop. The result is empty, or the system's word for what
// failed; the other file stands untouched then.
PLATFORM_API std::string ReplaceFile(const std::string& finished, const std::string& place);

}  // namespace platform
