#pragma once

#include <string>

namespace headless {

// A name may hold anything; what would break a line for a person shows as a question mark.
std::string InTable(std::string text);

}  // namespace headless
