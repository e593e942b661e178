#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>

namespace TVL {

// One line of the trace for a moment in UTC, newline included. An indent of -1 or less has no tab.
std::string FormatLogLine(std::chrono::sys_seconds moment, std::int32_t level, std::int32_t indent,
                          std::string_view message);

}  // namespace TVL
