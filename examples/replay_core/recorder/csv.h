#pragma once

#include <string>
#include <string_view>

namespace replay {

// A text as a field of comma-separated values (RFC 4180): in quotes where it has to be.
std::string CsvField(std::string_view text);

}  // namespace replay
