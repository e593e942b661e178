#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

#include "host/types.h"

// The ticks from one time to another that is not earlier, for any two times.
inline std::uint32_t TicksFrom(TimeValue from, TimeValue to) {
    return static_cast<std::uint32_t>(to) - static_cast<std::uint32_t>(from);
}

// Looks for the last of some sorted keys that is not later than a time, which lies from the first
// key on and before the last one. The keys of a take lie about evenly, so that their times tell
// where a key is: a first guess finds it at once if they do, and a few more if they nearly do.
// Between guesses the range is halved once, so that a rest or two in a take cost little, and then
// narrowed in growing steps from the last guess. What is left is halved. Memory is what a look into
// a long table costs; this way few keys are looked at.
template <class Key>
class KeySearch {
  public:
    KeySearch(std::span<const Key> keys, TimeValue t)
        : keys_(keys.data()), t_(t), last_(static_cast<std::int32_t>(keys.size()) - 1) {}

    // The position. After the first guess the neighbours of `recent` are tried, as in playback.
    std::int32_t Find(std::int32_t recent) {
        if (Guess()) return first_;
        for (const std::int32_t likely : {recent + 1, recent - 1}) {
            if (likely >= first_ && likely < last_ && IsAt(likely)) return likely;
        }
        for (int round = 0; round < kRounds && last_ - first_ > kFew; ++round) {
            Narrow(first_ + (last_ - first_) / 2);
            if (Guess() || (last_ - first_ > kMany && Guess())) return first_;
            StepAway();
        }
        return Halved();
    }

  private:
    static constexpr int kRounds = 3;
    static constexpr std::int32_t kFew = 64;     // they are halved at once
    static constexpr std::int32_t kMany = 4096;  // another guess costs less than to halve them
    static constexpr std::int64_t kFirstStep = 16;
    static constexpr std::int64_t kStepGrowth = 8;

    bool IsAt(std::int32_t index) const {
        return keys_[index].time <= t_ && t_ < keys_[index + 1].time;
    }

    // Takes `index`, inside the range, for one of its ends; true if that is the last one.
    bool Narrow(std::int32_t index) {
        isBehind_ = keys_[index].time <= t_;
        (isBehind_ ? first_ : last_) = index;
        return !isBehind_;
    }

    // As if the keys of the range lay evenly. True: first_ is the position.
    bool Guess() {
        const TimeValue from = keys_[first_].time;
        const double share = TicksFrom(from, t_) * static_cast<double>(last_ - first_) /
                             TicksFrom(from, keys_[last_].time);
        const std::int32_t guess = std::min(first_ + static_cast<std::int32_t>(share), last_ - 1);
        if (Narrow(guess)) return false;
        if (t_ < keys_[guess + 1].time) return true;
        first_ = guess + 1;
        return false;
    }

    // From the last guess towards the time, until it is passed.
    void StepAway() {
        const bool isUp = isBehind_;
        for (std::int64_t step = kFirstStep; step < last_ - first_; step *= kStepGrowth) {
            const auto by = static_cast<std::int32_t>(step);
            Narrow(isUp ? first_ + by : last_ - by);
            if (isBehind_ != isUp) return;
        }
    }

    // Without branches, which nobody could foretell.
    std::int32_t Halved() const {
        const Key* found = keys_ + first_;
        for (std::int32_t left = last_ - first_; left > 1; left -= left / 2)
            found += left / 2 * static_cast<std::int32_t>(found[left / 2].time <= t_);
        return static_cast<std::int32_t>(found - keys_);
    }

    const Key* keys_;
    TimeValue t_;

    // The key at first_ is not later than the time, that at last_ is.
    std::int32_t first_ = 0;
    std::int32_t last_;
    bool isBehind_ = false;  // the key that was looked at last is not later than the time
};
