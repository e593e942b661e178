#pragma once

#include <map>
#include <string>

#include "recorder/tape/read_tape.h"

namespace player {

// The scene files of a replay. What the tape's host saved is saved again in a folder of its own, so
// that no file of anybody's is written over; what it opened and merged is that, or is found by its
// digest where it lay then, beside the tape, or on it.
class ReplayScenes {
  public:
    // The folder is there, and the caller's.
    ReplayScenes(const recorder::TapeContents& tape, std::string folder);

    // Where a scene is written that the tape's host wrote there.
    std::string ToWrite(const std::string& path);

    // The file of this digest is what the replay wrote there last.
    void NoteSaved(const std::string& digest, const std::string& path);

    // What is read in place of the scene that the tape's host read there; empty if it cannot be
    // had. Without a digest it goes by the names.
    std::string ToRead(const std::string& digest, const std::string& path);

  private:
    std::string FromTape(const std::string& digest);
    std::string BesideTape(const std::string& digest, const std::string& path) const;

    const recorder::TapeContents& tape_;
    std::string folder_;
    std::map<std::string, std::string> written_;  // by the path of the tape's host
    std::map<std::string, std::string> saved_;    // by digest
};

}  // namespace player
