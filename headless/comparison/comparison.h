#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "headless/scene_file/scene_document.h"
#include "headless/scene_file/stored_keys.h"

namespace headless {

inline constexpr std::uint32_t kNoMatch = 0xFFFFFFFF;

// Which nodes of two documents are the same; each is an index of the other document, or kNoMatch.
struct NodeMatch {
    std::vector<std::uint32_t> inSecond;  // for each node of the first
    std::vector<std::uint32_t> inFirst;   // for each node of the second
};

// By handle and name first; of those that are left by their names and their parents', in the order
// of the file where these are double; and of those by handle alone.
NodeMatch MatchNodes(const SceneDocument& first, const SceneDocument& second);

// How differences are told to people. The first file's side stands ahead of "and", the second's
// behind it.

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
