#include "controllers/key_table.h"

template <class T>
const TarvoKey<T>& KeyTable<T>::InvalidKey() {
    static const Key key{0, -1, T{}};
    return key;
}

template <class T>
const TarvoKey<T>& KeyTable<T>::FindNearestKey(TimeValue t) {
    const KeyBracket<T> around = FindBracket(t);
    return around.index == lookupIndex ? *around.left : *around.right;
}

template <class T>
void KeyTable<T>::Seek(TimeValue t) {
    if (keys.empty()) {
        recent_ = {0, t, {&InvalidKey(), &InvalidKey(), lookupIndex}};
        return;
    }
    const bool isBeforeAll = t < keys.front().time;
    if (isBeforeAll || t >= keys.back().time) {
        const std::int32_t end = isBeforeAll ? 0 : Count() - 1;
        recent_ = {0, t, {&At(end), &At(end), end}};
        return;
    }
    const Key* const plain = keys.Plain();
    const std::int32_t index = plain ? KeySearch<Key>({plain, keys.size()}, keys.Edition(), t)
                                           .Find(recent_.Next(t), areEven_, marks_)
                                     : FirstAfter(t) - 1;
    const Key& left = At(index);
    const Key& right = At(index + 1);
    recent_ = {keys.Edition(), left.time, {&left, &right, index, TicksFrom(left.time, right.time)}};
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
    const auto at = static_cast<std::size_t>(index);
    if (keys.CanAppend(at) && names.CanAppend(index, name)) {
        names.Append(name);
        // Field by field, as the key has just been written: read in larger pieces it would have to
        // be in memory first, behind all that was written before.
        Key& end = keys.Append();
        end.flags = key.flags;
        end.time = key.time;
        end.value = key.value;
        return;
    }
    InsertInside(index, key, name);
}

template <class T>
void KeyTable<T>::InsertInside(std::int32_t index, const Key& key, KeyName name) {
    const auto at = static_cast<std::size_t>(index);
    keys.PrepareInsert(at);
    PrepareSearches();
    names.Insert(index, name);
    keys.InsertPrepared(at, key);
}

template <class T>
void KeyTable<T>::Overwrite(std::int32_t index, const Key& key, KeyName name) {
    names.Set(index, name);
    Edit(index) = key;
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

template struct KeyTable<float>;
template struct KeyTable<Matrix3>;
