#pragma once

#include <string>

#include "platform/platform_api.h"

namespace platform {

// From here on this process finds an empty registry, as on a computer where nothing is installed,
// whatever the real one holds. Keys that are open read on.
PLATFORM_API void HideRegistry();

// From here on this process, and each that it starts and that calls UseNamedRegistry, finds in the
// registry what the .reg file holds at this moment and nothing else. The real one is left as it is.
// On Windows the keys are real ones below a key of this process's own, which goes with it.
PLATFORM_API void UseRegistryFile(const std::string& path);

// Does so with the file that the environment variable LUMISET_REGISTRY names, if there is one.
PLATFORM_API void UseNamedRegistry();

inline constexpr char kRegistryVariable[] = "LUMISET_REGISTRY";

}  // namespace platform
