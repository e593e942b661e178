#pragma once

#include <string>

namespace headless {

// Without regard to the locale, and read back by the Core to the last bit.
std::string Plain(double number);

}  // namespace headless
