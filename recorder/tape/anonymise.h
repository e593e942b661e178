#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "recorder/tape/tape_file.h"

namespace recorder {

// Gives each text another one of its length, always the same, and to another text another one as
// far as there are enough. What it gives is drawn at random, so that nobody can go back from it.
class OtherTexts {
  public:
    OtherTexts();

    void Replace(char* text, std::size_t size);

  private:
    std::string Draw(std::size_t size);

    std::mt19937_64 random_;
    std::unordered_map<std::string, std::string> known_;
    std::unordered_set<std::string> given_;
};

// The bytes of a tape's file with all names and texts replaced. Sizes, numbers, times, digests of
// scenes, names of elements and attributes, the words of notes and what the adaptor tells of its
// system stay as they are; what cannot be read is wiped out. Throws what ReadTape throws.
std::vector<std::uint8_t> Anonymised(const std::string& path, TapeProgress progress);

}  // namespace recorder
