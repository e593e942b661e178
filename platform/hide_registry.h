#pragma once

#include "platform/platform_api.h"

namespace platform {

// From here on this process finds an empty registry, as on a computer where nothing is installed,
// whatever the real one holds; keys that are open read on. What RegOverridePredefKey is for on
// Windows.
PLATFORM_API void HideRegistry();

}  // namespace platform
