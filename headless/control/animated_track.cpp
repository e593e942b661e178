#include "headless/control/animated_track.h"

#include <cstddef>
#include <utility>

#include "host/animate.h"
#include "host/hold.h"

namespace headless {
namespace {

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

// A record is only made while there is a hold for it.
template <class Record, class T, class... Arguments>
void PutRecord(AnimatedTrack<T>& track, const Arguments&... arguments) {
    if (theHold.Holding()) theHold.Put(new Record(track, arguments...));
}

void Move(float& value, float from, float to) {
    value += to - from;
}

void Move(Point3& value, const Point3& from, const Point3& to) {
    value = value + (to - from);
}

void Move(Quat& value, const Quat& from, const Quat& to) {
    value = Then(value, Then(Opposite(from), to));
}

}  // namespace

template <class T>
void AnimatedTrack<T>::SetValue(TimeValue t, const T& value) {
    if (Animating())
        SetKey({t, 0, value});
    else
        Shift(data_.Evaluate(t), value);
}

template <class T>
void AnimatedTrack<T>::SetKey(const TrackKey<T>& key) {
    auto& keys = data_.keys;
    const std::size_t index = data_.FirstNotBefore(key.time);
    if (index < keys.size() && keys[index].time == key.time) {
        PutRecord<KeyChangeRecord<T>>(*this, keys[index]);
        keys[index] = key;
    } else {
        PutRecord<KeyPresenceRecord<T>>(*this, key);
        keys.insert(keys.begin() + static_cast<std::ptrdiff_t>(index), key);
    }
}

// Without keys the value is taken as it is; a difference would round it.
template <class T>
void AnimatedTrack<T>::Shift(const T& from, const T& to) {
    PutRecord<WholeTrackRecord<T>>(*this);
    if (data_.keys.empty()) {
        data_.rest = to;
        return;
    }
    Move(data_.rest, from, to);
    for (TrackKey<T>& key : data_.keys)
        Move(key.value, from, to);
}

template <class T>
void AnimatedTrack<T>::DeleteKey(std::size_t index) {
    PutRecord<KeyPresenceRecord<T>>(*this, data_.keys[index]);
    data_.keys.erase(data_.keys.begin() + static_cast<std::ptrdiff_t>(index));
    Announce();
}

template <class T>
void AnimatedTrack<T>::DeleteSelected() {
    DeleteThose([](const TrackKey<T>& key) { return key.selected != 0; });
}

template <class T>
void AnimatedTrack<T>::DeleteAll() {
    DeleteThose([](const TrackKey<T>&) { return true; });
}

template <class T>
void AnimatedTrack<T>::DeleteTime(Interval range, std::uint32_t flags) {
    DeleteThose([range, flags](const TrackKey<T>& key) {
        if (!range.InInterval(key.time)) return false;
        if (key.time == range.Start() && (flags & TIME_INCLEFT) == 0) return false;
        return key.time != range.End() || (flags & TIME_INCRIGHT) != 0;
    });
}

template <class T>
void AnimatedTrack<T>::Announce() {
    owner_.NotifyDependents(FOREVER, PART_ALL, REFMSG_CHANGE);
}

template <class T>
template <class Unwanted>
void AnimatedTrack<T>::DeleteThose(Unwanted unwanted) {
    auto& keys = data_.keys;
    if (std::none_of(keys.begin(), keys.end(), unwanted)) return;
    PutRecord<WholeTrackRecord<T>>(*this);
    std::erase_if(keys, unwanted);
    Announce();
}

template class AnimatedTrack<float>;
template class AnimatedTrack<Point3>;
template class AnimatedTrack<Quat>;

}  // namespace headless
