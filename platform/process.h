#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>

#include "platform/narrow_path.h"
#include "platform/platform_api.h"

// The running process: its variables, its command line, its program and who reads it.
namespace platform {

// Empty if it is not set. Letters that the code page lacks are '?', so that a path which has them
// names nothing rather than another file.
PLATFORM_API std::string Variable(const char* name);

// Sets a variable of this process and of those that it starts. An empty value takes it away. False
// if the system has no room for the value; the variable is as it was then.
PLATFORM_API bool SetVariable(const char* name, const std::string& value);

// A word of this process's command line that did not reach `main` as it was typed, since the code
// page lacks a letter of it; as a message can tell it. Empty if there is none. Whoever went by such
// a word would meet another file.
PLATFORM_API std::string LostArgument();

// Whether a person reads the standard error stream as it comes.
PLATFORM_API bool IsErrorStreamATerminal();

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
