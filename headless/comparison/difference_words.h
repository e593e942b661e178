#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "headless/scene_file/stored_keys.h"

// How differences are told to people. The first file's side stands ahead of "and", the second's
// behind it.
namespace headless {

// What a difference is about, as it stands in the file.
std::string NameOf(const StoredNode& node);
std::string NameOf(const StoredClass& type);

// Of two values that differ; long ones are told around where they begin to.
std::string TextDifference(std::string_view first, std::string_view second);

// Of contents that differ: the first line that does if both are text, else the first byte.
std::string ContentDifference(std::span<const std::byte> first, std::span<const std::byte> second);

// Of two controllers' keys: how many there are, where they begin to differ, and how far apart they
// come. Empty if they are equal.
std::string KeyDifference(const StoredKeys& first, const StoredKeys& second);

}  // namespace headless
