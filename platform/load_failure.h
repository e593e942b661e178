#pragma once

#include <string>

#include "platform/platform_api.h"

namespace platform {

// Why the last LoadLibraryA that failed did so, in the loader's own words; to be asked at once.
PLATFORM_API std::string LastLoadFailure();

}  // namespace platform
