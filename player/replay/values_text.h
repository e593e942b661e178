#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace player {

// The values of those letters (recorder/stream/operations.h) as a person reads them, in one line;
// long ones are cut.
std::string TextOfValues(std::string_view letters, std::span<const std::uint64_t> values);

}  // namespace player
