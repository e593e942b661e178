#pragma once

#include <string>

#include "platform/platform_api.h"

namespace platform {

// Why the last LoadLibraryA that failed did so: the file, and the loader's own words.
PLATFORM_API std::string LastLoadFailure();

}  // namespace platform
