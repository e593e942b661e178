#pragma once

#include <cstddef>
#include <utility>

#include "headless/control/animated_track.h"
#include "host/hold.h"

namespace headless {

// The records of a track's edits. Each exchanges what the track has for what it had, so that taking
// back and doing again are the same act. Keys are found by their times: where the track was edited
// past the hold in between, a record whose key is no longer there, or is there again, does nothing.
template <class T>
class TrackRecord : public RestoreObj {
  public:
    void Restore(int) final { Turn(true); }
    void Redo() final { Turn(false); }

  protected:
    explicit TrackRecord(AnimatedTrack<T>& track) : track_(track) {}
    KeyTrack<T>& Keys() { return track_.UnrecordedKeys(); }

  private:
    virtual bool Exchange() = 0;  // false: there is nothing to exchange

    void Turn(bool toUndone) {
        if (undone_ == toUndone || !Exchange()) return;
        undone_ = toUndone;
        track_.Announce();
    }

    AnimatedTrack<T>& track_;
    bool undone_ = false;
};

// Before a key comes to a time that has none, or the key at its time goes.
template <class T>
class KeyPresenceRecord final : public TrackRecord<T> {
  public:
    KeyPresenceRecord(AnimatedTrack<T>& track, const TrackKey<T>& key)
        : TrackRecord<T>(track), key_(key), isThere_(!track.Keys().HasKeyAt(key.time)) {}

  private:
    bool Exchange() override {
        KeyTrack<T>& track = this->Keys();
        if (track.HasKeyAt(key_.time) != isThere_) return false;
        const auto place =
            track.keys.begin() + static_cast<std::ptrdiff_t>(track.FirstNotBefore(key_.time));
        if (isThere_) {
            key_ = *place;
            track.keys.erase(place);
        } else {
            track.keys.insert(place, key_);
        }
        isThere_ = !isThere_;
        return true;
    }

    TrackKey<T> key_;
    bool isThere_;  // after the edit, and after each exchange
};

// A key is overwritten by another of the same time.
template <class T>
class KeyChangeRecord final : public TrackRecord<T> {
  public:
    KeyChangeRecord(AnimatedTrack<T>& track, const TrackKey<T>& before)
        : TrackRecord<T>(track), key_(before) {}

  private:
    bool Exchange() override {
        KeyTrack<T>& track = this->Keys();
        if (!track.HasKeyAt(key_.time)) return false;
        std::swap(track.keys[track.FirstNotBefore(key_.time)], key_);
        return true;
    }

    TrackKey<T> key_;
};

// Anything that changes more than one key, or what comes before the first.
template <class T>
class WholeTrackRecord final : public TrackRecord<T> {
  public:
    explicit WholeTrackRecord(AnimatedTrack<T>& track)
        : TrackRecord<T>(track), other_(track.Keys()) {}

  private:
    bool Exchange() override {
        std::swap(this->Keys(), other_);
        return true;
    }

    KeyTrack<T> other_;
};

}  // namespace headless
