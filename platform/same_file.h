#pragma once

#include <string>

#include "platform/platform_api.h"

namespace platform {

// Whether two paths lead to one file, or would if there were one: by links, by another case of the
// letters where the system does not mind it, or by whatever else it takes for the same.
PLATFORM_API bool AreSameFile(const std::string& first, const std::string& second);

}  // namespace platform
