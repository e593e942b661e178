#pragma once

#include <iosfwd>
#include <nlohmann/json_fwd.hpp>

namespace headless {

// For another program to read. Names of the scene need not be UTF-8: what is not is replaced.
void PrintJson(std::ostream& out, const nlohmann::ordered_json& object);

}  // namespace headless
