#pragma once

#include <cstddef>

namespace replay {

// Frames of a capture from `first` up to, but not including, `end`.
struct FrameRange {
    std::size_t Count() const { return end - first; }

    std::size_t first = 0;
    std::size_t end = 0;  // more than `first`
};

}  // namespace replay
