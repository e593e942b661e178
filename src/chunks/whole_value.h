#pragma once

#include <cstdint>
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

// A host that runs out of room says so itself when the file is closed.
template <class Value>
void WriteWhole(ISave& save, const Value& value) {
    static_assert(std::is_trivially_copyable_v<Value>);
    std::uint32_t written = 0;
    save.Write(&value, sizeof value, &written);
}
