#pragma once

#include <cstddef>
#include <optional>

#include "recorder/tape/read_tape.h"

namespace recorder {

// The first place at which two tapes tell different things: a session, and of each tape the record
// there, by its place among the session's records; the count of them where a tape has no more, or
// has no such session.
struct TapeDifference {
    std::size_t session = 0;
    std::size_t first = 0;
    std::size_t second = 0;
};

// Nothing if both tell the same. When, where and by whom they were recorded does not count, nor do
// times, windows and paths of scenes; nor where contents of meshes and what is told again stand,
// which depends on where a segment ended. Throws a std::runtime_error if it is given up, as
// `progress` hears it of the records of each session.
std::optional<TapeDifference> CompareTapes(const TapeContents& first, const TapeContents& second,
                                           const TapeProgress& progress = {});

}  // namespace recorder
