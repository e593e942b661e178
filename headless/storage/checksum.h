#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace headless {

// The CRC-32, as zlib and RFC 1952 (section 8) define it, of bytes that are told one behind the
// other. Zeros among them can get their value later, when what lies behind them has been told.
class Checksum {
  public:
    std::uint32_t Value() const { return value_; }

    void Append(std::span<const std::byte> bytes);

    // As many zeros, behind which so many bytes have been told, were these all along.
    void FillIn(std::span<const std::byte> bytes, std::uint64_t behind);

  private:
    std::uint32_t value_ = 0;
};

}  // namespace headless
