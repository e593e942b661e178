#pragma once

#include "command/steps.h"

namespace headless {

// Takes a step's line apart. Nothing is left of a comment.
std::vector<std::string> SplitIntoWords(std::string_view line);

// Reads the words behind the name of a step. Both throw a Failure on what makes no sense.
StepWords ReadWords(const StepKind& kind, std::span<const std::string> words);

// Whether a word is a number, where else a text could stand.
bool IsId(const std::string& word);

}  // namespace headless
