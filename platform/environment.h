#pragma once

#include <string>

#include "platform/platform_api.h"

namespace platform {

// Empty if it is not set. Letters that the code page lacks are '?', so that a path which has them
// names nothing rather than another file.
PLATFORM_API std::string Variable(const char* name);

// Sets a variable of this process and of those that it starts. An empty value takes it away. False
// if the system has no room for the value; the variable is as it was then.
PLATFORM_API bool SetVariable(const char* name, const std::string& value);

}  // namespace platform
