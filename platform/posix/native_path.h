#pragma once

#include <string>
#include <string_view>

namespace platform {

// A path in the system's own form: backslashes become slashes, and one stands where several stood.
std::string NativePath(std::string_view path);

// The same for a module, whose file ends in ".so" here.
std::string NativeModulePath(std::string_view path);

}  // namespace platform
