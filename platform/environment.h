#pragma once

#include <string>

#include "platform/platform_api.h"

namespace platform {

// Sets a variable of this process and of those that it starts. An empty value takes it away.
PLATFORM_API void SetVariable(const char* name, const std::string& value);

}  // namespace platform
