#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>
#include <span>
#include <utility>
#include <vector>

#include "host/types.h"

// The ticks from one time to another that is not earlier, for any two times. To an earlier one they
// are more than from there to any key behind.
inline std::uint32_t TicksFrom(TimeValue from, TimeValue to) {
    return static_cast<std::uint32_t>(to) - static_cast<std::uint32_t>(from);
}

// The last of so many sorted places from `first` on that is behind a time, as the first one is; the
// one after them is not. By quarters rather than halves, since three places are fetched in the time
// of one, and without branches, which nobody could foretell.
template <class Place, class Condition>
const Place* LastBehind(const Place* first, std::size_t count, Condition isBehind) {
    while (count >= 4) {
        const std::size_t quarter = count / 4;
        const std::size_t behind = std::size_t{isBehind(first[quarter])} +
                                   std::size_t{isBehind(first[2 * quarter])} +
                                   std::size_t{isBehind(first[3 * quarter])};
        first += behind * quarter;
        count -= 3 * quarter;
    }
    first += isBehind(first[1]);  // if there is one place left these do nothing
    return first + isBehind(first[1]);
}

// The times of every eighth key of a table too long for the processor's caches: a search among them
// leaves a few keys to look at, which lie side by side. They are good for one edition of the keys,
// from which they are taken once it has been searched so often that it pays. The room for them is
// made when keys come, so that a search asks for no memory.
class SearchMarks {
  public:
    void MakeRoom(std::size_t keys) {
        if (keys < kLong) return;
        try {
            times_.reserve(MarksOf(keys));
        } catch (const std::bad_alloc&) {
            // Searches go without.
        }
    }

    bool AreOf(std::uint64_t edition) const { return edition_ == edition && !times_.empty(); }

    // Those of the keys among which the last one is that is not later than `t`, and one behind.
    template <class Key>
    std::span<const Key> Around(TimeValue t, std::span<const Key> keys) const {
        const TimeValue* const mark =
            LastBehind(times_.data(), times_.size() - 1, [t](TimeValue time) { return time <= t; });
        const auto first = static_cast<std::size_t>(mark - times_.data()) * kApart;
        return keys.subspan(first, std::min(kApart + 1, keys.size() - first));
    }

    // The keys were searched without marks.
    template <class Key>
    void Note(std::span<const Key> keys, std::uint64_t edition) {
        if (keys.size() < kLong) return;
        if (std::exchange(edition_, edition) != edition) {
            searches_ = 0;
            times_.clear();
        }
        const std::size_t marks = MarksOf(keys.size());
        if (++searches_ < keys.size() / kPaying || marks > times_.capacity()) return;
        times_.resize(marks, keys.back().time);
        for (std::size_t mark = 0; mark + 1 < marks; ++mark)
            times_[mark] = keys[mark * kApart].time;
    }

  private:
    static constexpr std::size_t kApart = 8;
    static constexpr std::size_t kLong = 32'768;  // keys
    static constexpr std::size_t kPaying = 64;    // keys that are passed over in a search's time

    static std::size_t MarksOf(std::size_t keys) { return (keys - 1) / kApart + 2; }

    std::vector<TimeValue> times_;  // the last one is that of the last key
    std::uint64_t edition_ = 0;     // none
    std::size_t searches_ = 0;
};

// Looks for the last of some sorted keys that is not later than a time, which lies from the first
// key on and before the last one. Three ways, each where it costs least: playback comes to a
// neighbour of the key before; the keys of a take lie about evenly, so that their times tell where
// a key is; and what is left is a search of all, or by marks where there are some.
template <class Key>
class KeySearch {
  public:
    KeySearch(std::span<const Key> keys, std::uint64_t edition, TimeValue t)
        : keys_(keys),
          edition_(edition),
          last_(static_cast<std::int32_t>(keys.size()) - 1),
          t_(t) {}

    // The position. `likely` is where it may be, or -1. `areEven` is whether the keys' times told
    // it before; they are relied on as long as they do, since a look at a key that is not in the
    // processor's caches costs more than all else. Put into its one caller, so that what it is
    // given need not go by way of memory.
    [[gnu::always_inline]] std::int32_t Find(std::int32_t likely, bool& areEven,
                                             SearchMarks& marks) const {
        if (IsAt(likely)) return likely;
        if (marks.AreOf(edition_)) return SearchIn(marks.Around(t_, keys_));
        const std::int32_t guess = Guess();
        if (areEven) {
            if (IsAt(guess)) return guess;
            const std::int32_t near = guess + (IsBehind(guess) ? 1 : -1);
            if (IsAt(near)) return near;
        }
        const std::int32_t found = SearchIn(keys_);
        areEven = std::abs(found - guess) <= 1;
        marks.Note(keys_, edition_);
        return found;
    }

  private:
    TimeValue TimeAt(std::int32_t index) const {
        return keys_[static_cast<std::size_t>(index)].time;
    }
    bool IsBehind(std::int32_t index) const { return TimeAt(index) <= t_; }

    // Also of places where there is no key. The times take one comparison, since which of the two
    // keys is to blame could not be foretold.
    bool IsAt(std::int32_t index) const {
        if (index < 0 || index >= last_) return false;
        const TimeValue from = TimeAt(index);
        return TicksFrom(from, t_) < TicksFrom(from, TimeAt(index + 1));
    }

    // As if the keys lay evenly.
    std::int32_t Guess() const {
        const TimeValue from = TimeAt(0);
        const double share =
            TicksFrom(from, t_) * static_cast<double>(last_) / TicksFrom(from, TimeAt(last_));
        return std::min(static_cast<std::int32_t>(share), last_ - 1);
    }

    // The last of these keys is behind the one that is looked for.
    std::int32_t SearchIn(std::span<const Key> some) const {
        const Key* const found = LastBehind(some.data(), some.size() - 1,
                                            [this](const Key& key) { return key.time <= t_; });
        return static_cast<std::int32_t>(found - keys_.data());
    }

    std::span<const Key> keys_;
    std::uint64_t edition_;
    std::int32_t last_;
    TimeValue t_;
};
