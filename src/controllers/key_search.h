#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>

#include "host/types.h"

// The ticks from one time to another that is not earlier, for any two times. To an earlier one they
// are more than from there to any key behind.
inline std::uint32_t TicksFrom(TimeValue from, TimeValue to) {
    return static_cast<std::uint32_t>(to) - static_cast<std::uint32_t>(from);
}

// Looks for the last of some sorted keys that is not later than a time, which lies from the first
// key on and before the last one. Three ways, each where it costs least: playback comes to a
// neighbour of the key before; the keys of a take lie about evenly, so that their times tell where
// a key is; and what is left is a search of all.
template <class Key>
class KeySearch {
  public:
    KeySearch(std::span<const Key> keys, TimeValue t)
        : keys_(keys.data()), last_(static_cast<std::int32_t>(keys.size()) - 1), t_(t) {}

    // The position. `likely` is where it may be, or -1. `areEven` is whether the keys' times told
    // it before; they are relied on as long as they do, since a look at a key that is not in the
    // processor's caches costs more than all else.
    std::int32_t Find(std::int32_t likely, bool& areEven) const {
        if (IsAt(likely)) return likely;
        const std::int32_t guess = Guess();
        if (areEven) {
            if (IsAt(guess)) return guess;
            const std::int32_t near = guess + (IsBehind(guess) ? 1 : -1);
            if (IsAt(near)) return near;
        }
        const std::int32_t found = Search();
        areEven = std::abs(found - guess) <= 1;
        return found;
    }

  private:
    bool IsBehind(std::int32_t index) const { return keys_[index].time <= t_; }

    // Also of places where there is no key. The times take one comparison, since which of the two
    // keys is to blame could not be foretold.
    bool IsAt(std::int32_t index) const {
        if (index < 0 || index >= last_) return false;
        const TimeValue from = keys_[index].time;
        return TicksFrom(from, t_) < TicksFrom(from, keys_[index + 1].time);
    }

    // As if the keys lay evenly.
    std::int32_t Guess() const {
        const TimeValue from = keys_[0].time;
        const double share =
            TicksFrom(from, t_) * static_cast<double>(last_) / TicksFrom(from, keys_[last_].time);
        return std::min(static_cast<std::int32_t>(share), last_ - 1);
    }

    // By quarters rather than halves, since three keys are fetched in the time of one, and without
    // branches, which nobody could foretell.
    std::int32_t Search() const {
        std::int32_t first = 0;  // the key is one of so many from this one on
        std::int32_t left = last_;
        while (left >= 4) {
            const std::int32_t quarter = left / 4;
            first += quarter * (IsBehind(first + quarter) + IsBehind(first + 2 * quarter) +
                                IsBehind(first + 3 * quarter));
            left -= 3 * quarter;
        }
        first += IsBehind(first + 1);  // if there is one key left these do nothing
        return first + IsBehind(first + 1);
    }

    const Key* keys_;
    std::int32_t last_;
    TimeValue t_;
};
