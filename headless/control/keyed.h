#pragma once

#include "headless/control/animated_track.h"
#include "host/animatable.h"

namespace headless {

// The key operations of an animatable that has one track. An index that no key has is passed over.
template <class Base, class T>
class Keyed : public Base {
  public:
    int NumKeys() override { return static_cast<int>(Keys().size()); }

    TimeValue GetKeyTime(int index) override { return IsIndex(index) ? At(index).time : 0; }

    int GetKeyIndex(TimeValue t) override {
        return track_.Keys().HasKeyAt(t) ? static_cast<int>(track_.Keys().FirstNotBefore(t)) : -1;
    }

    // With NEXTKEY_LEFT the nearest key that is earlier, otherwise the nearest that is later.
    bool GetNextKeyTime(TimeValue t, std::uint32_t flags, TimeValue& next) override {
        int index = static_cast<int>(track_.Keys().FirstNotBefore(t));
        if ((flags & NEXTKEY_LEFT) != 0)
            --index;
        else if (IsIndex(index) && At(index).time == t)
            ++index;
        if (!IsIndex(index)) return false;
        next = At(index).time;
        return true;
    }

    bool IsKeyAtTime(TimeValue t, std::uint32_t) override { return track_.Keys().HasKeyAt(t); }

    int GetKeyTimes(Tab<TimeValue>& times, Interval range, std::uint32_t) override {
        const int before = times.Count();
        for (const TrackKey<T>& key : Keys())
            if (range.InInterval(key.time)) times.Append(1, &key.time);
        return times.Count() - before;
    }

    void DeleteKeyAtTime(TimeValue t) override { DeleteKeyByIndex(GetKeyIndex(t)); }

    void DeleteTime(Interval range, std::uint32_t flags) override {
        track_.DeleteTime(range, flags);
    }

    void DeleteKeys(std::uint32_t flags) override {
        if ((flags & TRACK_DOSEL) != 0)
            track_.DeleteSelected();
        else if ((flags & TRACK_DOALL) != 0)
            track_.DeleteAll();
    }

    void DeleteKeyByIndex(int index) override {
        if (IsIndex(index)) track_.DeleteKey(static_cast<std::size_t>(index));
    }

    void SelectKeys(TrackHitTab& hits, std::uint32_t flags) override {
        if ((flags & SELKEYS_CLEARKEYS) != 0) {
            for (int index = 0; index < NumKeys(); ++index)
                SelectKeyByIndex(index, 0);
            return;
        }
        if ((flags & (SELKEYS_SELECT | SELKEYS_DESELECT)) == 0) return;
        for (int i = 0; i < hits.Count(); ++i)
            SelectKeyByIndex(static_cast<int>(hits[i].hit), (flags & SELKEYS_SELECT) != 0 ? 1 : 0);
    }

    void SelectKeyByIndex(int index, std::uint32_t value) override {
        if (IsIndex(index)) track_.Select(static_cast<std::size_t>(index), value);
    }

    AnimatedTrack<T>& Track() { return track_; }
    const AnimatedTrack<T>& Track() const { return track_; }

  protected:
    Keyed() : track_(*this) {}
    explicit Keyed(ReferenceTarget& owner) : track_(owner) {}

  private:
    const std::vector<TrackKey<T>>& Keys() const { return track_.Keys().keys; }
    const TrackKey<T>& At(int index) const { return Keys()[static_cast<std::size_t>(index)]; }
    bool IsIndex(int index) const {
        return index >= 0 && static_cast<std::size_t>(index) < Keys().size();
    }

    AnimatedTrack<T> track_;
};

}  // namespace headless
