#pragma once

#include <array>
#include <string>

#include "platform/narrow_path.h"
#include "platform/win32.h"

namespace platform {

// The name of a module's file.
inline std::string ModuleFile(const std::string& module) {
#if defined(_WIN32)
    return module + ".dll";
#else
    return module + ".so";
#endif
}

// The path of a file that lies in the folder of the running program.
inline std::string BesideProgram(const std::string& file) {
    std::array<char, 4096> program{};
    GetModuleFileNameA(nullptr, program.data(), static_cast<DWORD>(program.size()));
    return ToNarrow(FromNarrow(program.data()).parent_path() / FromNarrow(file));
}

}  // namespace platform
