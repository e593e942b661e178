#pragma once

#include <filesystem>
#include <string>

#include "platform/platform_api.h"
#include "platform/win32.h"

// Marks a routine that a module exports by its name.
#if defined(_WIN32)
#define MODULE_ROUTINE extern "C" __declspec(dllexport)
#else
#define MODULE_ROUTINE extern "C" __attribute__((visibility("default")))
#endif

namespace platform {

// The name of a module's file.
inline std::string ModuleFile(const std::string& module) {
#if defined(_WIN32)
    return module + ".dll";
#else
    return module + ".so";
#endif
}

// A module's routine as the type that it really has; null if the module exports none of that name.
template <class Type>
Type* Routine(HMODULE module, const char* name) {
    // By way of the one type that every routine may be cast to and from.
    return reinterpret_cast<Type*>(reinterpret_cast<void (*)()>(GetProcAddress(module, name)));
}

// The file that LoadLibraryA opens for a path.
#if defined(_WIN32)
inline std::string FileToLoad(const std::string& path) {
    return path;
}
#else
PLATFORM_API std::string FileToLoad(const std::string& path);
#endif

// The file of the module, or program, in which something lies; empty if the system does not tell.
PLATFORM_API std::filesystem::path FileOfModule(const void* address);

// Why the last LoadLibraryA that failed did so, in the loader's own words; to be asked at once.
PLATFORM_API std::string LastLoadFailure();

// The same without the file that was asked for, with which some of the words begin.
inline std::string LastLoadFailureOf(const std::string& path) {
    const std::string words = LastLoadFailure();
    const std::string ahead = FileToLoad(path) + ": ";
    return words.starts_with(ahead) ? words.substr(ahead.size()) : words;
}

}  // namespace platform
