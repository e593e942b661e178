#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "headless/scene_file/scene_document.h"

namespace headless {

// Checks what the parts of a document say about each other: handles, parents, the targets of
// references and the chains that these make. Throws SceneFileError; `path` is for messages.
void CheckDocument(const SceneDocument& document, const std::string& path);

// All objects and, behind them, all nodes of a checked document, each by its place in that row,
// what is referred to ahead of who refers to it.
std::vector<std::size_t> TargetsFirst(const SceneDocument& document);

}  // namespace headless
