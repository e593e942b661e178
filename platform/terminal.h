#pragma once

#include "platform/platform_api.h"

namespace platform {

// Whether a person reads the standard error stream as it comes.
PLATFORM_API bool IsErrorStreamATerminal();

}  // namespace platform
