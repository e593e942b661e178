#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "command/exit_status.h"
#include "headless/scene_view.h"

namespace CLI {
class App;
class ParseError;
}  // namespace CLI

// What a person typed and the command cannot make sense of, in one line that names it, and what was
// most likely meant.
namespace headless {

// An empty word is one that was not said. The program can be a family of verbs as well.
Failure NoVerb(const CLI::App& program, const std::string& word);

// `error` is what the parser has thrown, from which the program and its verb still hold what they
// were given. The parser's own words reach nobody.
Failure WrongWords(const CLI::App& program, const CLI::ParseError& error);

// How a message ends that says of a word that it is none: "; render is the nearest". Most likely
// meant was a candidate that begins with it, one that ends in it, as joints do behind the name of
// their take, or one that differs from it in a third of its letters at most, where two letters that
// changed places differ once. Nothing if there is none.
std::string TellNearest(std::string_view word, const std::vector<std::string>& candidates);

// The one node of that name. Throws a Failure where there is none, or several.
NodeView TheNode(const std::string& name);

// What is said where no node is called so.
std::string NoNode(const std::string& name);

}  // namespace headless
