#include "headless/control/animated_track.h"

#include "headless/control/track_records.h"
#include "host/animate.h"
#include "host/hold.h"

namespace headless {
namespace {

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
