#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "recorder/tape/segments.h"

namespace recorder {

struct Segment {
    SegmentHead head;
    std::uint64_t offset = 0;  // in the file
    SegmentContents contents;
};

// A tape as its file has it: the segments whose heads are good, in the order of their numbers.
struct TapeFile {
    std::string name;
    std::uint64_t bytes = 0;  // of the file
    std::vector<std::uint64_t> words;
    std::vector<Segment> segments;
    std::vector<std::string> damages;  // segments that were passed over
};

// Throw a std::runtime_error that names the file and says why it is not read.
TapeFile LoadTape(const std::string& path);
TapeFile LoadTape(const std::string& name, const std::vector<std::uint8_t>& bytes);

// How a damage is told.
std::string AtByte(std::uint64_t byte, const std::string& what);

}  // namespace recorder
