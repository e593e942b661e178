#include "controllers/key_table.h"

#include <algorithm>

namespace {

// How far neighbouring positions are tried before the search starts to halve.
constexpr int kNearbySteps = 8;

// Wide enough for any two times.
std::int64_t Between(TimeValue from, TimeValue to) {
    return std::int64_t{to} - from;
}

}  // namespace

template <class T>
float KeyBracket<T>::Fraction(TimeValue t) const {
    return static_cast<float>(Between(left->time, t)) /
           static_cast<float>(Between(left->time, right->time));
}

template <class T>
const TarvoKey<T>& KeyTable<T>::InvalidKey() {
    static const Key key{0, -1, T{}};
    return key;
}

template <class T>
const TarvoKey<T>& KeyTable<T>::FindNearestKey(TimeValue t) {
    if (keys.empty()) return InvalidKey();
    if (t < keys.front().time) {
        lookupIndex = 0;
    } else if (t >= keys.back().time) {
        lookupIndex = Count() - 1;
    } else {
        lookupIndex = IndexAtOrBefore(t);
        if (Between(At(lookupIndex).time, t) > Between(t, At(lookupIndex + 1).time)) ++lookupIndex;
    }
    return At(lookupIndex);
}

template <class T>
std::int32_t KeyTable<T>::IndexAtOrBefore(TimeValue t) const {
    std::int32_t index = std::clamp(lookupIndex, 0, Count() - 1);
    for (int step = 0; step < kNearbySteps; ++step) {
        if (At(index).time > t) {
            --index;
        } else if (At(index + 1).time <= t) {
            ++index;
        } else {
            return index;
        }
    }
    return FirstAfter(t) - 1;
}

template <class T>
KeyBracket<T> KeyTable<T>::FindBracket(TimeValue t) {
    const Key* nearest = &FindNearestKey(t);
    if (nearest->time < t && Contains(lookupIndex + 1)) return {nearest, &At(lookupIndex + 1)};
    if (nearest->time > t && Contains(lookupIndex - 1)) return {&At(lookupIndex - 1), nearest};
    return {nearest, nearest};
}

template <class T>
const TarvoKey<T>& KeyTable<T>::FindExactKey(TimeValue t) const {
    const std::int32_t index = IndexOf(t);
    return Contains(index) ? At(index) : InvalidKey();
}

template <class T>
std::int32_t KeyTable<T>::IndexOf(TimeValue t) const {
    const std::int32_t index = FirstNotBefore(t);
    return Contains(index) && At(index).time == t ? index : -1;
}

template <class T>
std::int32_t KeyTable<T>::IndexOf(TimeValue t, KeyName name, std::int32_t likely) const {
    const bool isThere = Contains(likely) && At(likely).time == t;
    const std::int32_t index = isThere ? likely : IndexOf(t);
    return index >= 0 && names.At(index) == name ? index : -1;
}

template <class T>
std::int32_t KeyTable<T>::PlaceFor(TimeValue t, std::int32_t likely) const {
    const bool fits = likely >= 0 && likely <= Count() &&
                      (likely == 0 || At(likely - 1).time < t) &&
                      (likely == Count() || t < At(likely).time);
    if (fits) return likely;
    const std::int32_t index = FirstNotBefore(t);
    return Contains(index) && At(index).time == t ? -1 : index;
}

template <class T>
std::int32_t KeyTable<T>::FirstNotBefore(TimeValue t) const {
    return static_cast<std::int32_t>(keys.FirstNot([t](const Key& key) { return key.time < t; }));
}

template <class T>
std::int32_t KeyTable<T>::FirstAfter(TimeValue t) const {
    return static_cast<std::int32_t>(keys.FirstNot([t](const Key& key) { return key.time <= t; }));
}

template <class T>
void KeyTable<T>::Insert(std::int32_t index, const Key& key, KeyName name) {
    keys.PrepareInsert(static_cast<std::size_t>(index));
    names.Insert(index, name);
    keys.insert(static_cast<std::size_t>(index), key);
}

template <class T>
void KeyTable<T>::Overwrite(std::int32_t index, const Key& key, KeyName name) {
    names.Set(index, name);
    At(index) = key;
}

template <class T>
void KeyTable<T>::Remove(std::int32_t index) {
    keys.PrepareErase(static_cast<std::size_t>(index));
    names.Remove(index);
    keys.erase(static_cast<std::size_t>(index));
}

template <class T>
void KeyTable<T>::Clear() {
    names.Clear();
    keys.clear();
}

template struct KeyBracket<float>;
template struct KeyBracket<Matrix3>;
template struct KeyTable<float>;
template struct KeyTable<Matrix3>;
