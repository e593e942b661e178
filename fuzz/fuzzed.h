#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <string_view>

// The input of a target, as its reader takes it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

inline std::string_view AsText(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

inline std::span<const std::byte> AsBytes(const std::uint8_t* data, std::size_t size) {
    return std::as_bytes(std::span(data, size));
}

// What must hold whatever the input is. A finding otherwise.
inline void Require(bool holds) {
    if (!holds) std::abort();
}
