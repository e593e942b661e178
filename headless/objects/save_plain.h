#pragma once

#include <type_traits>
#include <vector>

#include "host/storage.h"

// Writing plain values and tables of them as chunks.
namespace headless {

template <class T>
void SaveValue(ISave& save, const T& value) {
    static_assert(std::is_trivially_copyable_v<T>);
    save.Write(&value, sizeof(T), nullptr);
}

template <class T>
void SaveChunk(ISave& save, std::uint16_t id, const T& value) {
    save.BeginChunk(id);
    SaveValue(save, value);
    save.EndChunk();
}

// The count as 32 bits, then the items.
template <class T>
void SaveTable(ISave& save, std::uint16_t id, const std::vector<T>& table) {
    save.BeginChunk(id);
    SaveValue(save, static_cast<std::uint32_t>(table.size()));
    for (const T& item : table)
        SaveValue(save, item);
    save.EndChunk();
}

}  // namespace headless
