#pragma once

#include <string>

namespace recorder {

// By what a scene on a tape is known: 64 bits of a hash (FNV-1a) of the bytes of its file, in 16
// hexadecimal digits. Empty if the file cannot be read.
std::string DigestOfFile(const std::string& path);

}  // namespace recorder
