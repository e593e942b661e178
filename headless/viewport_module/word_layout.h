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

    // No word is to cover this place, if there is room near it.
    void Spare(const IPoint2& place);

    // Beside a place of the picture or as near as there is room; a little farther if it covers no
    // place there that is spared, and the line from the place to the word crosses no other word.
    // None if there is no room.
    std::optional<Frame> TakeNear(const IPoint2& place, int width, int height);

  private:
    using Squares = std::vector<bool>;  // row by row

    bool IsFree(const Frame& frame, const Squares& taken) const;
    bool IsTidy(const Frame& frame, const IPoint2& place) const;
    void Mark(const Frame& frame, Squares& taken);

    int width_;
    int height_;
    std::size_t across_;  // squares in a row
    Squares taken_;
    Squares spared_;
    int narrowestWithoutRoom_ = std::numeric_limits<int>::max();
};

// The line that leads from a place to a word that was moved aside; without pixels to one that
// stands near enough.
struct LeadingLine {
    IPoint2 from;
    IPoint2 way;
    int count = 0;  // of pixels, both ends included

    IPoint2 Pixel(int index) const;
};
LeadingLine LineTo(const Frame& frame, const IPoint2& place);

}  // namespace headless
