#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <vector>

#include "host/storage.h"

// Chunks of plain values and of tables of them, written and read the same way. A value is its
// memory image, a table its number of items in 32 bits and then the items.
namespace headless {

static_assert(std::endian::native == std::endian::little,
              "values are stored as they lie in memory");

// How many items of a table are read or written at once, so that an announced number costs no
// memory.
inline constexpr std::size_t kItemsAtOnce = 1024;

template <class T>
void SaveValue(ISave& save, const T& value) {
    static_assert(std::is_trivially_copyable_v<T>);
    save.Write(&value, sizeof(T), nullptr);
}

template <class T>
void SaveItems(ISave& save, const std::vector<T>& items) {
    static_assert(std::is_trivially_copyable_v<T>);
    for (std::size_t first = 0; first < items.size(); first += kItemsAtOnce) {
        const std::size_t count = std::min(kItemsAtOnce, items.size() - first);
        save.Write(&items[first], static_cast<std::uint32_t>(count * sizeof(T)), nullptr);
    }
}

template <class T>
void SaveChunk(ISave& save, std::uint16_t id, const T& value) {
    save.BeginChunk(id);
    SaveValue(save, value);
    save.EndChunk();
}

template <class T>
void SaveTable(ISave& save, std::uint16_t id, const std::vector<T>& table) {
    save.BeginChunk(id);
    SaveValue(save, static_cast<std::uint32_t>(table.size()));
    SaveItems(save, table);
    save.EndChunk();
}

// False: not all of its bytes are there.
template <class T>
bool LoadValue(ILoad& load, T& value) {
    static_assert(std::is_trivially_copyable_v<T>);
    return load.Read(&value, sizeof(T), nullptr) == IO_OK;
}

// Replaces `items` by `count` of them. False: fewer are there; those that are whole are kept.
template <class T>
bool LoadItems(ILoad& load, std::vector<T>& items, std::size_t count) {
    static_assert(std::is_trivially_copyable_v<T>);
    items.clear();
    while (items.size() < count) {
        const std::size_t before = items.size();
        const std::size_t wanted = std::min(kItemsAtOnce, count - before);
        items.resize(before + wanted);
        std::uint32_t bytes = 0;
        load.Read(&items[before], static_cast<std::uint32_t>(wanted * sizeof(T)), &bytes);
        items.resize(before + bytes / sizeof(T));
        if (items.size() < before + wanted) break;
    }
    items.shrink_to_fit();
    return items.size() == count;
}

// Reads the contents of the open chunk as a table.
template <class T>
bool LoadTable(ILoad& load, std::vector<T>& table) {
    std::uint32_t count = 0;
    return LoadValue(load, count) && LoadItems(load, table, count);
}

// Whether the open chunk has been read to its end: what is left would be lost with the next save.
// Without trying to read beyond it.
inline bool IsReadWhole(ILoad& load) {
    const IOResult further = load.OpenChunk();
    if (further == IO_OK) load.CloseChunk();
    return further == IO_END;
}

// Reads every chunk of the level by `read`, which is asked with the chunk's id and says whether it
// knows the chunk and found sense in it. IO_ERROR: it did not, or read less than was there, or the
// chunks themselves are damaged.
template <class Read>
IOResult LoadChunks(ILoad& load, Read read) {
    bool whole = true;
    IOResult opened = load.OpenChunk();
    for (; opened == IO_OK; opened = load.OpenChunk()) {
        whole = read(load.CurChunkID()) && IsReadWhole(load) && whole;
        load.CloseChunk();
    }
    return whole && opened == IO_END ? IO_OK : IO_ERROR;
}

}  // namespace headless
