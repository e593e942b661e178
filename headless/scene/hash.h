#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace headless {

// A running 64-bit hash. Texts and bytes go in with their length, so that the borders between
// items count.
class Hash {
  public:
    void Add(std::uint64_t number);
    void Add(std::span<const std::byte> bytes);
    void Add(std::string_view text);
    std::uint64_t Value() const { return state_; }

  private:
    std::uint64_t state_ = 0x9E3779B97F4A7C15;
};

}  // namespace headless
