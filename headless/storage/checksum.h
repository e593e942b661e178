#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace headless {

// The running CRC-32 of bytes, as zlib and RFC 1952 (section 8) define it.
class Checksum {
  public:
    void Add(std::span<const std::byte> bytes);
    std::uint32_t Value() const { return value_; }

  private:
    std::uint32_t value_ = 0;
};

}  // namespace headless
