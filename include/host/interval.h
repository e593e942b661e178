#pragma once

#include <limits>

#include "host/types.h"

// A run of time, both ends inside. An interval whose start lies behind its end is empty.
class Interval {
  public:
    constexpr Interval() = default;
    constexpr Interval(TimeValue first, TimeValue last) : start_(first), end_(last) {}

    constexpr TimeValue Start() const { return start_; }
    constexpr TimeValue End() const { return end_; }
    constexpr void Set(TimeValue first, TimeValue last) {
        start_ = first;
        end_ = last;
    }
    constexpr void SetInstant(TimeValue t) { Set(t, t); }
    constexpr bool InInterval(TimeValue t) const { return t >= start_ && t <= end_; }
    constexpr bool Empty() const { return start_ > end_; }

    friend constexpr bool operator==(const Interval&, const Interval&) = default;

  private:
    TimeValue start_ = 0;
    TimeValue end_ = -1;
};

inline constexpr Interval FOREVER{std::numeric_limits<TimeValue>::min(),
                                  std::numeric_limits<TimeValue>::max()};
