#pragma once

#include <cstddef>
#include <utility>

#include "control/animated_track.h"
#include "host/hold.h"

namespace headless {

// The records of a track's edits. Each exchanges what the track has for what it had, so that taking
// back and doing again are the same act.
template <class T>
class TrackRecord : public RestoreObj {
  public:
    void Restore(int) final { Turn(true); }
    void Redo() final { Turn(false); }

  protected:
    explicit TrackRecord(AnimatedTrack<T>& track) : track_(track) {}
    KeyTrack<T>& Keys() { return track_.UnrecordedKeys(); }

  private:
    virtual void Exchange() = 0;

    void Turn(bool toUndone) {
        if (undone_ == toUndone) return;
        undone_ = toUndone;
        Exchange();
        track_.Announce();
    }

    AnimatedTrack<T>& track_;
    bool undone_ = false;
};

// A key is there or is not.
template <class T>
class KeyPresenceRecord final : public TrackRecord<T> {
  public:
    // Before a key comes that is to have this index.
    KeyPresenceRecord(AnimatedTrack<T>& track, std::size_t index)
        : TrackRecord<T>(track), index_(index), isThere_(true) {}
    // Before the key with this index goes.
    KeyPresenceRecord(AnimatedTrack<T>& track, std::size_t index, const TrackKey<T>& key)
        : TrackRecord<T>(track), index_(index), key_(key), isThere_(false) {}

  private:
    void Exchange() override {
        auto& keys = this->Keys().keys;
        const auto place = keys.begin() + static_cast<std::ptrdiff_t>(index_);
        if (isThere_) {
            key_ = *place;
            keys.erase(place);
        } else {
            keys.insert(place, key_);
        }
        isThere_ = !isThere_;
    }

    std::size_t index_;
    TrackKey<T> key_;
    bool isThere_;
};

// A key is overwritten.
template <class T>
class KeyChangeRecord final : public TrackRecord<T> {
  public:
    KeyChangeRecord(AnimatedTrack<T>& track, std::size_t index)
        : TrackRecord<T>(track), index_(index), key_(track.Keys().keys[index]) {}

  private:
    void Exchange() override { std::swap(this->Keys().keys[index_], key_); }

    std::size_t index_;
    TrackKey<T> key_;
};

// Anything that changes more than one key, or what comes before the first.
template <class T>
class WholeTrackRecord final : public TrackRecord<T> {
  public:
    explicit WholeTrackRecord(AnimatedTrack<T>& track)
        : TrackRecord<T>(track), other_(track.Keys()) {}

  private:
    void Exchange() override { std::swap(this->Keys(), other_); }

    KeyTrack<T> other_;
};

}  // namespace headless
