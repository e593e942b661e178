#pragma once

#include <string>
#include <string_view>

namespace platform {

// A path in the system's own form: backslashes become slashes, and one stands where several stood.
std::string NativePath(std::string_view path);

// The same for a module, whose file ends in ".so" here.
std::string NativeModulePath(std::string_view path);

// The file of the running program; empty if the system does not tell.
std::string ProgramPath();

}  // namespace platform
