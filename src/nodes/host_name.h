#pragma once

#include <string>

// Host names pass through a buffer of 1024 bytes, so that 1023 of a longer name remain: fewer, if
// the cut would fall inside a UTF-8 character.
inline constexpr std::string::size_type kLongestHostName = 1023;

std::string CutHostName(std::string name);
