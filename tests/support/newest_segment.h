#pragma once

#include <cstring>
#include <string>

#include "recorder/tape/segments.h"

// Where the segment begins and ends that a tape was written to last.
struct SegmentPlace {
    std::size_t begin = 0;
    std::size_t end = 0;  // behind the last byte that is no zero, in whole words
};
inline SegmentPlace NewestSegment(const std::string& tape) {
    SegmentPlace newest;
    std::uint64_t number = 0;
    for (std::size_t at = 0; at + sizeof(recorder::SegmentHead) <= tape.size();
         at += recorder::kNewSegment) {
        recorder::SegmentHead head;
        std::memcpy(&head, &tape[at], sizeof head);
        if (head.magic != recorder::kSegmentMagic || head.number <= number) continue;
        number = head.number;
        const std::size_t last = tape.find_last_not_of('\0', at + recorder::kNewSegment - 1);
        newest = {at, (last / 8 + 1) * 8};
    }
    return newest;
}
