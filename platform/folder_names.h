#pragma once

#include <string>
#include <vector>

#include "platform/platform_api.h"

namespace platform {

// The names of what is in a folder, in no order; none of a folder that cannot be read. A name that
// narrow text cannot spell is left out. Unlike std::filesystem's own, which ends the process then,
// this throws std::bad_alloc where memory runs out.
PLATFORM_API std::vector<std::string> NamesInFolder(const std::string& folder);

}  // namespace platform
