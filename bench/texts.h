#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

// What the codecs work on, of about as many bytes as asked for, the same on every run.

inline constexpr std::int64_t kBytesInKilobyte = 1000;
inline constexpr std::size_t kPlainBytes = 1'000'000;  // of what is packed

std::string ProseOf(std::size_t bytes);

// Lines of decimal numbers, as captures and curves have them.
std::string NumbersOf(std::size_t bytes);

// A Core's state in the writer's compact form: takes with nodes of many attributes each, in the
// order in which a tree keeps them, and nothing in them that is written as a reference.
std::string StateOf(std::size_t bytes);

// Elements that hold a long text each.
std::string LongTextsOf(std::size_t bytes);

// No order in them.
std::vector<std::uint8_t> NoiseOf(std::size_t bytes);
