#pragma once

#include <bit>
#include <cstdint>
#include <memory>
#include <type_traits>
#include <vector>

#include "controllers/key_names.h"
#include "controllers/key_search.h"
#include "controllers/parted_array.h"
#include "host/matrix3.h"
#include "host/storage.h"
#include "host/types.h"

// One key of a controller. Scene files hold its memory image; the order of the fields is part of
// the contract.
template <class T>
struct TarvoKey {
    std::uint32_t flags = 0;  // 0: not selected
    TimeValue time = 0;
    T value{};
};
static_assert(sizeof(TarvoKey<float>) == 12 && sizeof(TarvoKey<Matrix3>) == 60);
static_assert(std::is_trivially_copyable_v<TarvoKey<Matrix3>>);
static_assert(std::endian::native == std::endian::little);

// Keys as one array. Those that come without a value are what memory has there, so that they are
// read straight into their place.
template <class Key>
struct UnsetKeys : std::allocator<Key> {
    void construct(Key*) const {}
};
template <class Key>
using KeyArray = std::vector<Key, UnsetKeys<Key>>;

// The two keys between which a time lies; they are one and the same where only one key counts.
template <class T>
struct KeyBracket {
    const TarvoKey<T>* left;
    const TarvoKey<T>* right;
    std::int32_t index;       // of the left key; where there is no key what lookupIndex is
    std::uint32_t ticks = 0;  // from the left key to the right one
    std::uint32_t way = 0;    // of these to the time; 0 where only one key counts

    bool IsOneKey() const { return way == 0; }

    // How far the time is from the left key to the right one, in single precision throughout.
    float Fraction() const { return static_cast<float>(way) / static_cast<float>(ticks); }
};

// The keys of a controller, times strictly rising, with the cached key: the last value that was
// evaluated or set and its time, which is also the only value while there are no keys. References
// that are given out are good until the table changes. The names stand behind the keys, for the
// undo records alone.
template <class T>
struct KeyTable {
    using Key = TarvoKey<T>;

    PartedArray<KeyArray<Key>> keys;
    Key currentKey;
    std::int32_t lookupIndex = 0;  // where the nearest key was found last
    KeyNames names;

    // Stands for the absence of a key: time -1, the default value.
    static const Key& InvalidKey();

    // The key nearest to `t`, the earlier one if two are equally near; the invalid key if there is
    // none. Its position is left in lookupIndex.
    const Key& FindNearestKey(TimeValue t);

    // The keys around `t`. Outside the table, or on a key, that is one key; never null. The nearest
    // one's position is left in lookupIndex.
    KeyBracket<T> FindBracket(TimeValue t) {
        if (!IsRecent(t)) Seek(t);
        return InRecent(t);
    }

    // Whether `t` is in the bracket that was found last, so that it is inside the table.
    bool IsRecent(TimeValue t) const {
        return TicksFrom(recent_.time, t) < recent_.around.ticks &&
               recent_.edition == keys.Edition();
    }

    // The key at exactly `t`, else the invalid key.
    const Key& FindExactKey(TimeValue t) const;

    // Its position, else -1.
    std::int32_t IndexOf(TimeValue t) const;

    // The position of the key of that name at `t`, else -1; looked for at `likely` first.
    std::int32_t IndexOf(TimeValue t, KeyName name, std::int32_t likely) const;

    // Where a key at `t` goes, -1 if there is one; looked for at `likely` first.
    std::int32_t PlaceFor(TimeValue t, std::int32_t likely) const;

    // Whether the keys have just these names.
    bool AreNamed(const std::vector<KeyName>& expected) const {
        return keys.size() == expected.size() && names.All() == expected;
    }

    // The position of the first key that is not earlier than `t`, or that is later than `t`.
    std::int32_t FirstNotBefore(TimeValue t) const;
    std::int32_t FirstAfter(TimeValue t) const;

    std::int32_t Count() const { return static_cast<std::int32_t>(keys.size()); }
    bool Contains(std::int32_t index) const { return index >= 0 && index < Count(); }
    bool EndsBefore(TimeValue t) const { return keys.empty() || keys.back().time < t; }

    Key& Edit(std::int32_t index) { return keys.Edit(static_cast<std::size_t>(index)); }
    const Key& At(std::int32_t index) const { return keys[static_cast<std::size_t>(index)]; }

    // Positions must be inside the table, that of a key that comes may be its end. If one fails
    // nothing has changed.
    void Insert(std::int32_t index, const Key& key, KeyName name = kNoName);
    void Overwrite(std::int32_t index, const Key& key, KeyName name = kNoName);
    void Remove(std::int32_t index);
    void Clear();

    // Makes room for what searches keep of as many keys as there is room for.
    void PrepareSearches() { marks_.MakeRoom(keys.Room()); }

  private:
    // The keys between which a time was found last. Good for the keys of that edition alone. Where
    // one key counts, it and the time are good for one use, and of no edition.
    struct Recent {
        std::uint64_t edition = 0;  // none
        TimeValue time = 0;         // of the left key; where one key counts, that which was sought
        KeyBracket<T> around{nullptr, nullptr, 0};

        // Where `t` is if it comes next in playback, in either direction; else -1. Times alone tell
        // it: other keys may be far away in memory.
        std::int32_t Next(TimeValue t) const {
            if (TicksFrom(time, t) < std::uint64_t{2} * around.ticks) return around.index + 1;
            return TicksFrom(t, time) <= around.ticks ? around.index - 1 : -1;
        }
    };

    KeyBracket<T> InRecent(TimeValue t) {
        const auto& [left, right, index, ticks, _] = recent_.around;
        const std::uint32_t way = TicksFrom(recent_.time, t);
        lookupIndex = index + static_cast<std::int32_t>(way > ticks - way);
        return {left, way == 0 ? left : right, index, ticks, way};
    }

    // Makes the keys around `t` the recent ones; outside the table for `t` alone.
    void Seek(TimeValue t);

    // Insert where it is not the next of many that come at the end.
    void InsertInside(std::int32_t index, const Key& key, KeyName name);

    Recent recent_;
    bool areEven_ = true;  // see KeySearch
    SearchMarks marks_;
};

// How a key table stands in a scene file: one chunk with id 1 of little-endian bytes, holding the
// format version 100, the size of a key record (12 for float, 60 for Matrix3) and the number of
// keys, 32 bits signed each, then a record for each key and one for the cached key.
template <class T>
void SaveKeys(ISave& save, const KeyTable<T>& table);

// Adds the chunk's keys to the table. A chunk of another id, version or record size is skipped. The
// announced number is believed for a megabyte, and beyond it only as far as records are there:
// reading stops at the first that is not whole, and keeps those before it. Keys out of order are
// sorted; of equal times the last stands.
template <class T>
void LoadKeys(ILoad& load, KeyTable<T>& table);

extern template struct KeyTable<float>;
extern template struct KeyTable<Matrix3>;
