#pragma once

#include <cstddef>

#include "platform/platform_api.h"
#include "platform/win32.h"

// What a test sets, and what it looks at to see that nothing was left behind.
namespace platform {

// GetTickCount stands still at this value until ClearTickCount.
PLATFORM_API void SetTickCount(DWORD milliseconds);
PLATFORM_API void ClearTickCount();

PLATFORM_API std::size_t CountLoadedModules();  // by LoadLibraryA; a module counts once
PLATFORM_API std::size_t CountOpenKeys();
PLATFORM_API std::size_t CountWindows();  // controls included

}  // namespace platform
