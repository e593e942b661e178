#pragma once

#include <string>

namespace headless {

// Why the plug-in could not load a Core, in one line that names where it looked for one.
std::string WhyNoCore();

}  // namespace headless
