#pragma once

#include <cstdint>
#include <vector>

#include "headless/scene_file/scene_document.h"

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

}  // namespace headless
