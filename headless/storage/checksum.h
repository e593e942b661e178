#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>

namespace headless {

// The CRC-32, as zlib and RFC 1952 (section 8) define it, of the bytes from `begin` up to, not
// including, `end`. `read` reads what stands at a position and says whether it could; nothing if it
// could not.
using ReadBytesAt = std::function<bool(std::uint64_t, std::span<std::byte>)>;
std::optional<std::uint32_t> ChecksumOf(std::uint64_t begin, std::uint64_t end,
                                        const ReadBytesAt& read);

}  // namespace headless
