#pragma once

#include <string>

#include "recorder/tape/mapped_file.h"
#include "recorder/tape/segments.h"
#include "recorder/tape/slots.h"

namespace recorder {

// What a tape's file holds already, and where it is to be gone on with.
struct Stock {
    std::uint64_t segmentBytes = kNewSegment;
    Slots slots;
    std::uint64_t session = 0;        // the last one
    SegmentHead newest{.number = 0};  // 0 of a tape that holds nothing
    std::size_t place = 0;            // of that segment
    std::size_t used = 0;             // bytes of it, up to the end of the last good record
    bool isClosed = false;            // it ends with a save
};

// Empty, or why the file is not to be written to.
std::string TakeStock(const MappedFile& file, Stock& stock);

// Whether a record is the note of a save that succeeded.
bool IsSave(const Record& record);

}  // namespace recorder
