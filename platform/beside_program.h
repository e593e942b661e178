#pragma once

#include <array>
#include <filesystem>
#include <string>

#include "platform/win32.h"

namespace platform {

// The path of a file that lies in the folder of the running program.
inline std::string BesideProgram(const char* file) {
    std::array<char, MAX_PATH> program{};
    GetModuleFileNameA(nullptr, program.data(), MAX_PATH);
    return (std::filesystem::path(program.data()).parent_path() / file).string();
}

}  // namespace platform
