#pragma once

#include <string>

namespace headless {

// What a plug-in said of the exception that is being handled; it may have thrown anything.
std::string ThrownWords();

}  // namespace headless
