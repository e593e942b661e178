#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>

#include "platform/narrow_path.h"
#include "platform/platform_api.h"

namespace platform {

// The name of a module's file.
inline std::string ModuleFile(const std::string& module) {
#if defined(_WIN32)
    return module + ".dll";
#else
    return module + ".so";
#endif
}

// The file of the running program; empty if the system does not tell.
PLATFORM_API std::filesystem::path ProgramFile();

// The path of a file that lies in the folder of the running program. Throws where that folder
// cannot be told; by its bare name the file would be looked for elsewhere.
inline std::string BesideProgram(const std::string& file) {
    const std::filesystem::path program = ProgramFile();
    if (program.empty()) throw std::runtime_error("the system does not tell where this program is");
    const std::filesystem::path folder = program.parent_path();
    std::string path = ToNarrow(folder / FromNarrow(file));
    if (path.empty())
        throw std::runtime_error(Shown(folder) +
                                 ": the code page lacks a letter of this program's folder");
    return path;
}

}  // namespace platform
