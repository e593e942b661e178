#pragma once

#include <string>

#include "command/exit_status.h"

namespace CLI {
class App;
class ParseError;
}  // namespace CLI

// What a person typed and the command cannot make sense of, in one line that names it, and what was
// most likely meant.
namespace headless {

// An empty word is one that was not said.
Failure NoVerb(const CLI::App& program, const std::string& word);

// `error` is what the parser has thrown, from which the program and its verb still hold what they
// were given. The parser's own words reach nobody.
Failure WrongWords(const CLI::App& program, const CLI::ParseError& error);

}  // namespace headless
