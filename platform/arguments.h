#pragma once

#include <string>

#include "platform/platform_api.h"

namespace platform {

// A word of this process's command line that did not reach `main` as it was typed, since the code
// page lacks a letter of it; as a message can tell it. Empty if there is none. Whoever went by such
// a word would meet another file.
PLATFORM_API std::string LostArgument();

}  // namespace platform
