#pragma once

#include <cstddef>
#include <string>

namespace headless {

// A count and its noun: "1 node", "2 nodes". `several` is for nouns that take more than an s.
std::string Counted(std::size_t count, const std::string& noun, const std::string& several = "");

}  // namespace headless
