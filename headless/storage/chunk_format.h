#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

// A chunk is its id in 2 bytes, the length of its contents in 8, and the contents: bytes, further
// chunks, or bytes with chunks behind them. Numbers are little-endian.
namespace headless {

inline constexpr std::size_t kChunkIdBytes = 2;
inline constexpr std::size_t kChunkLengthBytes = 8;
inline constexpr std::size_t kChunkHeaderBytes = kChunkIdBytes + kChunkLengthBytes;

template <std::size_t Count>
std::array<std::byte, Count> LittleEndian(std::uint64_t number) {
    std::array<std::byte, Count> bytes;
    for (std::byte& byte : bytes) {
        byte = static_cast<std::byte>(number & 0xFF);
        number >>= 8;
    }
    return bytes;
}

inline std::uint64_t FromLittleEndian(const std::byte* bytes, std::size_t count) {
    std::uint64_t number = 0;
    while (count-- > 0)
        number = number << 8 | static_cast<std::uint64_t>(bytes[count]);
    return number;
}

}  // namespace headless
