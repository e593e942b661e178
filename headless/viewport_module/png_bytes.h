#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "headless/viewport.h"

namespace headless {

// A PNG file without a time, so that one picture always gives the same bytes. The result is empty,
// or says why there is none.
std::string PngBytes(const Picture& picture, std::vector<std::uint8_t>& into);

}  // namespace headless
