#include <algorithm>
#include <vector>

#include "chunks/whole_value.h"
#include "controllers/key_table.h"

namespace {

constexpr std::uint16_t kKeysChunk = 1;
constexpr std::int32_t kFormatVersion = 100;

bool IsNext(ILoad& load, std::int32_t expected) {
    std::int32_t number = 0;
    return ReadWhole(load, number) && number == expected;
}

template <class T>
void SortByTime(std::vector<TarvoKey<T>>& keys) {
    using Key = TarvoKey<T>;
    const auto rises = [](const Key& a, const Key& b) { return a.time < b.time; };
    const auto notRising = [](const Key& a, const Key& b) { return a.time >= b.time; };
    if (std::adjacent_find(keys.begin(), keys.end(), notRising) == keys.end()) return;

    std::stable_sort(keys.begin(), keys.end(), rises);
    // From the end, so that of equal times the last one is kept.
    const auto kept = std::unique(keys.rbegin(), keys.rend(),
                                  [](const Key& a, const Key& b) { return a.time == b.time; });
    keys.erase(keys.begin(), kept.base());
}

// Room for the next key. The announced number is believed once a third of so many keys are there;
// from then on nothing is moved any more, so that one long table never stands in memory twice.
template <class T>
void MakeRoom(std::vector<TarvoKey<T>>& keys, std::size_t announced) {
    constexpr std::size_t kFirstKeys = 16;
    if (keys.size() < keys.capacity()) return;
    const bool isBelieved = keys.size() >= announced / 3;
    const std::size_t grown = keys.size() + keys.size() / 2 + kFirstKeys;
    keys.reserve(isBelieved ? std::max(announced, keys.size() + 1) : grown);
}

template <class T>
void ReadRecords(ILoad& load, KeyTable<T>& table) {
    std::int32_t count = 0;
    if (!IsNext(load, kFormatVersion) || !IsNext(load, sizeof(TarvoKey<T>)) ||
        !ReadWhole(load, count))
        return;
    std::vector<TarvoKey<T>>& keys = table.keys.Whole();
    const std::size_t announced = keys.size() + static_cast<std::size_t>(std::max(count, 0));
    TarvoKey<T> key;
    for (std::int32_t i = 0; i < count; ++i) {
        if (!ReadWhole(load, key)) return;
        MakeRoom(keys, announced);
        keys.push_back(key);
    }
    ReadWhole(load, table.currentKey);
}

}  // namespace

template <class T>
void SaveKeys(ISave& save, const KeyTable<T>& table) {
    save.BeginChunk(kKeysChunk);
    WriteWhole(save, kFormatVersion);
    WriteWhole(save, std::int32_t{sizeof(TarvoKey<T>)});
    WriteWhole(save, table.Count());
    for (const TarvoKey<T>& key : table.keys)
        WriteWhole(save, key);
    WriteWhole(save, table.currentKey);
    save.EndChunk();
}

template <class T>
void LoadKeys(ILoad& load, KeyTable<T>& table) {
    if (load.OpenChunk() != IO_OK) return;
    if (load.CurChunkID() == kKeysChunk) ReadRecords(load, table);
    load.CloseChunk();
    table.names.VoidAll();
    SortByTime(table.keys.Whole());
    table.keys.Whole().shrink_to_fit();  // large scenes are opened only to be looked at and saved
}

template void SaveKeys(ISave&, const KeyTable<float>&);
template void SaveKeys(ISave&, const KeyTable<Matrix3>&);
template void LoadKeys(ILoad&, KeyTable<float>&);
template void LoadKeys(ILoad&, KeyTable<Matrix3>&);
