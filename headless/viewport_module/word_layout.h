#pragma once

#include <cstddef>
#include <limits>
#include <optional>
#include <vector>

#include "host/types.h"

namespace headless {

// Pixels, the last ones not included.
struct Frame {
    int left, top, right, bottom;
};

// Where the words of a picture stand, so that none covers another. Places are taken in squares of a
// few pixels.
class WordLayout {
  public:
    WordLayout(int width, int height);

    // There and nowhere else. False if that is not free, or not all of it in the picture.
    bool Take(const Frame& frame);

    // Beside a place of the picture or as near as there is room, first such that the line from the
    // place to the word crosses no other word. None if there is no room.
    std::optional<Frame> TakeNear(const IPoint2& place, int width, int height);

  private:
    bool IsFree(const Frame& frame) const;
    bool IsLineFree(const IPoint2& from, const IPoint2& to) const;
    void Mark(const Frame& frame);

    int width_;
    int height_;
    std::size_t across_;       // squares in a row
    std::vector<bool> taken_;  // row by row
    int narrowestWithoutRoom_ = std::numeric_limits<int>::max();
};

// The point of a frame that is nearest to a place.
IPoint2 NearestIn(const Frame& frame, const IPoint2& place);

// What lies on a line, from its start to its end, pixel by pixel.
std::vector<IPoint2> PixelsOf(const IPoint2& from, const IPoint2& to);

}  // namespace headless
