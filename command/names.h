#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "headless/scene_view.h"

// Names that a person typed, and what is called so or was meant.
namespace headless {

// The candidate that a person who typed `word` most likely meant: one that begins with it, or one
// that differs from it in a third of its letters at most, where two letters that changed places
// differ once. Empty if there is none.
std::string Nearest(std::string_view word, const std::vector<std::string>& candidates);

// How a message ends that says of a word that it is none: "; render is the nearest", or nothing.
std::string TellNearest(std::string_view word, const std::vector<std::string>& candidates);

// The one node of that name. Throws a Failure where there is none, or several.
NodeView TheNode(const std::string& name);

// What is said where no node is called so.
std::string NoNode(const std::string& name);

}  // namespace headless
