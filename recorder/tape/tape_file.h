#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "recorder/tape/segments.h"

namespace recorder {

struct Segment {
    SegmentHead head;
    std::uint64_t offset = 0;  // in the file
    SegmentContents contents;
};

// Hears now and then how far the work on a tape has come. Its answer false gives that up.
using TapeProgress = std::function<bool(std::uint64_t done, std::uint64_t whole)>;

// A tape as its file has it: the segments whose heads are good, in the order of their numbers.
struct TapeFile {
    std::string name{};
    std::uint64_t bytes = 0;  // of the file
    std::vector<std::uint64_t> words{};
    std::vector<Segment> segments{};
    std::vector<std::string> damages{};  // segments that were passed over
    TapeProgress progress{};

    // It is gone through three times: byte by byte, segment by segment, and then record by record
    // by whoever loads it. Throws a std::runtime_error if it is to be given up.
    void TellDone(int times, std::uint64_t more) const;
};

// Throw a std::runtime_error that names the file and says why it is not read.
TapeFile LoadTape(const std::string& path, TapeProgress progress);
TapeFile LoadTape(const std::string& name, const std::vector<std::uint8_t>& bytes);

// How a damage is told.
std::string AtByte(std::uint64_t byte, const std::string& what);

}  // namespace recorder
