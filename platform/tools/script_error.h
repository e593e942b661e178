#pragma once

#include <stdexcept>
#include <string>

// A fault in a resource script; its text begins with the file and the line, if it is in a line.
class ScriptError : public std::runtime_error {
  public:
    ScriptError(const std::string& file, int line, const std::string& message)
        : std::runtime_error(file + (line > 0 ? ":" + std::to_string(line) : "") + ": " + message) {
    }
};
