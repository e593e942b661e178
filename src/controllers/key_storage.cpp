#include <algorithm>
#include <new>
#include <span>

#include "chunks/whole_value.h"
#include "controllers/key_table.h"

namespace {

constexpr std::uint16_t kKeysChunk = 1;
constexpr std::int32_t kFormatVersion = 100;

bool IsNext(ILoad& load, std::int32_t expected) {
    std::int32_t number = 0;
    return ReadWhole(load, number) && number == expected;
}

// Whether the times rise from the key ahead of position `first` on.
template <class T>
bool RiseFrom(const KeyArray<TarvoKey<T>>& keys, std::size_t first) {
    const auto begin = keys.begin() + static_cast<std::ptrdiff_t>(first > 0 ? first - 1 : 0);
    return std::adjacent_find(begin, keys.end(), [](const auto& a, const auto& b) {
               return a.time >= b.time;
           }) == keys.end();
}

template <class T>
void SortByTime(KeyArray<TarvoKey<T>>& keys) {
    using Key = TarvoKey<T>;
    std::stable_sort(keys.begin(), keys.end(),
                     [](const Key& a, const Key& b) { return a.time < b.time; });
    // From the end, so that of equal times the last one is kept.
    const auto kept = std::unique(keys.rbegin(), keys.rend(),
                                  [](const Key& a, const Key& b) { return a.time == b.time; });
    keys.erase(keys.begin(), kept.base());
}

// A table of a megabyte is no large one.
template <class T>
constexpr std::size_t kLarge = (1 << 20) / sizeof(TarvoKey<T>);

// Room for `more` keys. The announced number is believed at once if it is not large, and else when
// an eighth of so many keys are there; from then on nothing is moved any more, so that one long
// table never stands in memory twice.
template <class T>
void MakeRoom(KeyArray<TarvoKey<T>>& keys, std::size_t more, std::size_t announced) {
    constexpr std::size_t kBelief = 8;
    const std::size_t needed = keys.size() + more;
    if (needed <= keys.capacity()) return;
    const std::size_t believed = std::max(kLarge<T>, keys.size() * kBelief);
    try {
        keys.reserve(std::max(needed, std::min(announced, believed)));
    } catch (const std::bad_alloc&) {
        // The array grows as it needs to, as far as it can.
    }
}

struct KeysRead {
    bool areAll = true;
    bool rise = true;  // the times of all keys, if they did so before
};

// How many records were there, of as many as are wanted. What was not read goes again, also where
// the host throws.
template <class Keys>
std::size_t AppendPiece(ILoad& load, Keys& keys, std::size_t wanted) {
    struct Unread {
        Keys& keys;
        std::size_t first = keys.size();
        ~Unread() { keys.resize(first); }
    } unread{keys};
    keys.resize(unread.first + wanted);
    const std::size_t there = ReadRun(load, std::span(keys).subspan(unread.first));
    unread.first += there;
    return there;
}

// Appends records as they lie, a piece at a time. Their times are looked at while they are near to
// the processor: in its nearest cache, and of a large table, whose pieces a host takes straight
// from the file, in the next one.
template <class T>
KeysRead ReadKeys(ILoad& load, KeyArray<TarvoKey<T>>& keys, std::size_t count) {
    const std::size_t piece = (count > kLarge<T> ? 256 << 10 : 8 << 10) / sizeof(TarvoKey<T>);
    const std::size_t announced = keys.size() + count;
    KeysRead read;
    while (read.areAll && keys.size() < announced) {
        const std::size_t before = keys.size();
        const std::size_t wanted = std::min(piece, announced - before);
        MakeRoom(keys, wanted, announced);
        read.areAll = AppendPiece(load, keys, wanted) == wanted;
        read.rise = read.rise && RiseFrom(keys, before);
    }
    return read;
}

// Whether the times of all keys rise afterwards, if they did so before.
template <class T>
bool ReadRecords(ILoad& load, KeyTable<T>& table) {
    std::int32_t count = 0;
    if (!IsNext(load, kFormatVersion) || !IsNext(load, sizeof(TarvoKey<T>)) ||
        !ReadWhole(load, count))
        return true;
    const auto announced = static_cast<std::size_t>(std::max(count, 0));
    const KeysRead read = ReadKeys(load, table.keys.EditWhole(), announced);
    if (read.areAll) ReadWhole(load, table.currentKey);
    return read.rise;
}

}  // namespace

template <class T>
void SaveKeys(ISave& save, const KeyTable<T>& table) {
    save.BeginChunk(kKeysChunk);
    WriteWhole(save, kFormatVersion);
    WriteWhole(save, std::int32_t{sizeof(TarvoKey<T>)});
    WriteWhole(save, table.Count());
    WriteRun(save, std::span(table.keys.Whole()));
    WriteWhole(save, table.currentKey);
    save.EndChunk();
}

template <class T>
void LoadKeys(ILoad& load, KeyTable<T>& table) {
    if (load.OpenChunk() != IO_OK) return;
    const bool rise = load.CurChunkID() != kKeysChunk || ReadRecords(load, table);
    load.CloseChunk();
    table.names.VoidAll();
    if (!rise) SortByTime(table.keys.EditWhole());
    // Large scenes are opened only to be looked at and saved.
    table.keys.EditWhole().shrink_to_fit();
    table.PrepareSearches();
}

template void SaveKeys(ISave&, const KeyTable<float>&);
template void SaveKeys(ISave&, const KeyTable<Matrix3>&);
template void LoadKeys(ILoad&, KeyTable<float>&);
template void LoadKeys(ILoad&, KeyTable<Matrix3>&);
