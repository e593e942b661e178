#include <algorithm>
#include <array>
#include <span>
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

// Room for `more` keys. The announced number is believed at once for a table of a megabyte, and
// else when an eighth of so many keys are there; from then on nothing is moved any more, so that
// one long table never stands in memory twice.
template <class T>
void MakeRoom(std::vector<TarvoKey<T>>& keys, std::size_t more, std::size_t announced) {
    constexpr std::size_t kAlwaysBelieved = (1 << 20) / sizeof(TarvoKey<T>);
    constexpr std::size_t kBelief = 8;
    const std::size_t needed = keys.size() + more;
    if (needed <= keys.capacity()) return;
    keys.reserve(
        std::max(needed, std::min(announced, std::max(kAlwaysBelieved, keys.size() * kBelief))));
}

// Appends records as they lie, a block at a time; true if all were there.
template <class T>
bool ReadKeys(ILoad& load, std::vector<TarvoKey<T>>& keys, std::size_t count) {
    constexpr std::size_t kBlockBytes = 4 << 10;  // near to the processor
    std::array<TarvoKey<T>, kBlockBytes / sizeof(TarvoKey<T>)> block;
    const std::size_t announced = keys.size() + count;
    while (keys.size() < announced) {
        const std::size_t wanted = std::min(block.size(), announced - keys.size());
        const std::size_t there = ReadWhole(load, std::span(block).first(wanted));
        MakeRoom(keys, there, announced);
        keys.insert(keys.end(), block.begin(), block.begin() + static_cast<std::ptrdiff_t>(there));
        if (there < wanted) return false;
    }
    return true;
}

template <class T>
void ReadRecords(ILoad& load, KeyTable<T>& table) {
    std::int32_t count = 0;
    if (!IsNext(load, kFormatVersion) || !IsNext(load, sizeof(TarvoKey<T>)) ||
        !ReadWhole(load, count))
        return;
    const auto announced = static_cast<std::size_t>(std::max(count, 0));
    if (ReadKeys(load, table.keys.EditWhole(), announced)) ReadWhole(load, table.currentKey);
}

}  // namespace

template <class T>
void SaveKeys(ISave& save, const KeyTable<T>& table) {
    save.BeginChunk(kKeysChunk);
    WriteWhole(save, kFormatVersion);
    WriteWhole(save, std::int32_t{sizeof(TarvoKey<T>)});
    WriteWhole(save, table.Count());
    WriteWhole(save, std::span(table.keys.Whole()));
    WriteWhole(save, table.currentKey);
    save.EndChunk();
}

template <class T>
void LoadKeys(ILoad& load, KeyTable<T>& table) {
    if (load.OpenChunk() != IO_OK) return;
    if (load.CurChunkID() == kKeysChunk) ReadRecords(load, table);
    load.CloseChunk();
    table.names.VoidAll();
    SortByTime(table.keys.EditWhole());
    table.keys.EditWhole()
        .shrink_to_fit();  // large scenes are opened only to be looked at and saved
}

template void SaveKeys(ISave&, const KeyTable<float>&);
template void SaveKeys(ISave&, const KeyTable<Matrix3>&);
template void LoadKeys(ILoad&, KeyTable<float>&);
template void LoadKeys(ILoad&, KeyTable<Matrix3>&);
