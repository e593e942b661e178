#pragma once

#include <stdexcept>
#include <string>

// A fault in a resource script; its text begins with the file and the line, if it is in a line.
class ScriptError : public std::runtime_error {
  public:
    ScriptError(const std::string& file, int line, const std::string& message)
        : std::runtime_error(Place(file, line) + ": " + message) {}

  private:
    static std::string Place(const std::string& file, int line) {
        std::string place = file;
        if (line > 0) place.append(":").append(std::to_string(line));
        return place;
    }
};
