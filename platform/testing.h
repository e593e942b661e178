#pragma once

#include <cstddef>
#include <string>

#include "platform/platform_api.h"
#include "platform/win32.h"

// What a test sets, and what it looks at to see that nothing was left behind.
namespace platform {

// GetTickCount stands still at this value until ClearTickCount. On Windows this holds for what is
// linked into the program, and not for modules that it loads.
PLATFORM_API void SetTickCount(DWORD milliseconds);
PLATFORM_API void ClearTickCount();

PLATFORM_API std::size_t CountLoadedModules();  // by LoadLibraryA; a module counts once
PLATFORM_API std::size_t CountOpenKeys();       // of a registry that stands in for the real one
PLATFORM_API std::size_t CountWindows();        // controls included

// How much room a block of the C heap has; 0 for none.
PLATFORM_API std::size_t RoomOfBlock(void* block);

// Runs a line of the system's shell, in which paths stand between quotation marks, and gives the
// exit status; -1 if the program did not end by itself.
PLATFORM_API int RunLine(const std::string& line);

}  // namespace platform
