#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <type_traits>

#include "host/storage.h"

// Values in chunks of the scene file, as memory holds them.

// False, and `value` as it was, unless all of it is there.
template <class Value>
bool ReadWhole(ILoad& load, Value& value) {
    static_assert(std::is_trivially_copyable_v<Value>);
    Value whole{};
    std::uint32_t read = 0;
    if (load.Read(&whole, sizeof whole, &read) != IO_OK || read != sizeof whole) return false;
    value = whole;
    return true;
}

// As many values as are whole there, all of them only if the host says so; those behind are
// undefined. For less than the host can count, and not for none. A host that gives nothing where it
// cannot give all is asked for one after the other.
template <class Value>
std::size_t ReadRun(ILoad& load, std::span<Value> values) {
    static_assert(std::is_trivially_copyable_v<Value>);
    std::uint32_t read = 0;
    const auto wanted = static_cast<std::uint32_t>(values.size_bytes());
    if (load.Read(values.data(), wanted, &read) == IO_OK && read == wanted) return values.size();
    if (read > 0) return std::min<std::size_t>(read / sizeof(Value), values.size() - 1);
    std::size_t whole = 0;
    while (whole < values.size() && ReadWhole(load, values[whole]))
        ++whole;
    return whole;
}

// A host that runs out of room says so itself when the file is closed.
template <class Value>
void WriteWhole(ISave& save, const Value& value) {
    static_assert(std::is_trivially_copyable_v<Value>);
    std::uint32_t written = 0;
    save.Write(&value, sizeof value, &written);
}

// One behind the other, in pieces that the host can count.
template <class Value>
void WriteRun(ISave& save, std::span<const Value> values) {
    constexpr std::size_t kMostAtOnce = (1 << 30) / sizeof(Value);
    while (!values.empty()) {
        const auto piece = values.first(std::min(values.size(), kMostAtOnce));
        std::uint32_t written = 0;
        save.Write(piece.data(), static_cast<std::uint32_t>(piece.size_bytes()), &written);
        values = values.subspan(piece.size());
    }
}
