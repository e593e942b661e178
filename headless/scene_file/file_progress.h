#pragma once

#include <cstdint>
#include <string>

#include "headless/session.h"

// How far the work on a scene file has come, told to whoever drives the session.
namespace headless {

void SetFileProgressHandler(FileProgressHandler handler);

// The time in which what is done is told of this file. One lives at a time; without one, or
// without a handler, nothing is told.
class ToldFile {
  public:
    explicit ToldFile(const std::string& path);
    ~ToldFile();
    ToldFile(const ToldFile&) = delete;
    ToldFile& operator=(const ToldFile&) = delete;

    // From here on the work has to come to its end, whatever is answered.
    static void GoOnToTheEnd();
};

// So much of what is done now is done; `doing` is how that begins on a line for people. Throws
// SceneFileError if the work is to be given up.
void TellDone(const char* doing, std::uint64_t done, std::uint64_t whole);

}  // namespace headless
