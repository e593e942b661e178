#pragma once

#include <cstdint>

#include "headless/control/key_track.h"
#include "host/animatable.h"
#include "host/reference.h"

namespace headless {

// A key track that belongs to a controller: its edits put records on an open hold and tell whoever
// refers to the controller. The records refer to the track, so it lives as long as its controller.
template <class T>
class AnimatedTrack {
  public:
    explicit AnimatedTrack(ReferenceTarget& owner) : owner_(owner) {}
    AnimatedTrack(const AnimatedTrack&) = delete;
    AnimatedTrack& operator=(const AnimatedTrack&) = delete;

    const KeyTrack<T>& Keys() const { return data_; }
    KeyTrack<T>& UnrecordedKeys() { return data_; }  // for loading, copying, and changes of parents

    // In animate mode `value` becomes a key at `t`. Otherwise the whole track is moved so that it
    // has that value there. Tells nobody.
    void SetValue(TimeValue t, const T& value);

    void DeleteKey(std::size_t index);
    void DeleteSelected();
    void DeleteAll();

    // The keys inside; those at the very ends only if the flags take them in.
    void DeleteTime(Interval range, std::uint32_t flags);

    void Select(std::size_t index, std::uint32_t selected) {
        data_.keys[index].selected = selected;
    }

    void Announce();  // that values have changed

  private:
    void SetKey(const TrackKey<T>& key);
    void Shift(const T& from, const T& to);
    template <class Unwanted>
    void DeleteThose(Unwanted unwanted);

    ReferenceTarget& owner_;
    KeyTrack<T> data_;
};

extern template class AnimatedTrack<float>;
extern template class AnimatedTrack<Point3>;
extern template class AnimatedTrack<Quat>;

}  // namespace headless
