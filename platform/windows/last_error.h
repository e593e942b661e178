#pragma once

#include <string>

namespace platform {

// The system's words for an error of its own, in one line.
std::string WordsFor(unsigned long error);

std::string WordsForLastError();

}  // namespace platform
