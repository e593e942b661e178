#pragma once

#include <cstddef>
#include <filesystem>

#include "platform/platform_api.h"
#include "platform/win32.h"

// What a test sets, and what it looks at to see that nothing was left behind.
namespace platform {

// GetTickCount stands still at this value until ClearTickCount. On Windows this holds for what is
// linked into the program, and not for modules that it loads.
PLATFORM_API void SetTickCount(DWORD milliseconds);
PLATFORM_API void ClearTickCount();

PLATFORM_API std::size_t CountLoadedModules();  // by LoadLibraryA; a module counts once
PLATFORM_API std::size_t CountOpenKeys();       // of the substitute for the real registry
PLATFORM_API std::size_t CountWindows();        // controls included

// How much room a block of the C heap has; 0 for none.
PLATFORM_API std::size_t RoomOfBlock(void* block);

// Removes a folder with all that is in it, however long the paths are.
PLATFORM_API void RemoveFolder(const std::filesystem::path& folder);

// A program, the rest of its command line as it is typed, in which paths stand between quotation
// marks, and where it runs and writes.
struct ProgramRun {
    std::filesystem::path program;
    std::filesystem::path::string_type arguments;
    std::filesystem::path out;    // file for what it prints
    std::filesystem::path error;  // file for what it prints as errors
    std::filesystem::path folder = std::filesystem::current_path();
};

// Its exit status; -1 if it did not start, or did not end by itself.
PLATFORM_API int RunProgram(const ProgramRun& run);

}  // namespace platform
