#pragma once

#include <string>

namespace recorder {

// By what a scene on a tape is known: a hash of 64 bits of its file (docs/tape.md), in 16
// hexadecimal digits. Empty if the file cannot be read.
std::string DigestOfFile(const std::string& path);

}  // namespace recorder
