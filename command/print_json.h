#pragma once

#include <iosfwd>
#include <nlohmann/json_fwd.hpp>

namespace headless {

// For another program to read, in UTF-8. Texts of the code page are turned to it; where they need
// not be texts, what is none is replaced.
void PrintJson(std::ostream& out, nlohmann::ordered_json object);

}  // namespace headless
