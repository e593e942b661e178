#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace platform {

// Letters of ASCII alone change: names that the system knows have no others.
std::string LowerCase(std::string_view text);
bool EqualWithoutCase(std::string_view left, std::string_view right);

// Copies as much as fits with its NUL, and returns the length of that. `size` is at least 1.
std::size_t CopyText(std::string_view text, char* buffer, std::size_t size);

// Unpaired surrogates become U+FFFD; half a code unit at the end is dropped.
std::string Utf8FromUtf16LittleEndian(std::string_view bytes);

// What is said of a process that was not awaited any longer.
std::string NotOverAfter(double seconds);

}  // namespace platform
