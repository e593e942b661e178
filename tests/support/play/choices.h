#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace play {

// Choices, read off a row of bytes: the same bytes, the same choices. Past the end of the row each
// choice is the first one. The bytes stay the caller's.
class Choices {
  public:
    Choices() = default;
    explicit Choices(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}

    // From 0 to below `bound`, which is 1 to 256.
    int Below(int bound) {
        if (bytes_.empty()) return 0;
        const int byte = bytes_.front();
        bytes_ = bytes_.subspan(1);
        return byte % bound;
    }
    bool Chance() { return Below(2) == 1; }

    // One of a list that has at least one entry.
    template <class List>
    auto& OneOf(List& list) {
        return list[static_cast<std::size_t>(Below(static_cast<int>(std::size(list))))];
    }

  private:
    std::span<const std::uint8_t> bytes_;
};

}  // namespace play
