#pragma once

#include <set>
#include <string>
#include <vector>

// A word, a number, a text without its quotes, or one of the signs , | { }.
struct Token {
    enum class Kind { Word, Number, Text, Sign };

    Kind kind = Kind::Sign;
    std::string text;
    long number = 0;
    std::string file;
    int line = 0;
};

struct TokenizedScript {
    std::vector<Token> tokens;
    std::set<std::string> files;  // the script and what it includes
};

// Reads a resource script, with comments dropped and its directives carried out: #include "file"
// (names in angle brackets are the system's, whose constants are known here already), #define of
// numbers, #ifdef, #ifndef, #else, #endif, #pragma. RC_INVOKED is defined. Throws ScriptError.
TokenizedScript ReadScript(const std::string& path);
