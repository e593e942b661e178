#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace headless {

// Many bytes become few that leave the same CRC-32, by the processor's carry-less products, which
// go through bytes several times as fast as any table. A message is a polynomial over two elements,
// one bit a coefficient, and what counts is its remainder by the polynomial of the checksum: a
// block is moved to the place of a later one by products with remainders of powers of x. After
// Gopal et al., "Fast CRC Computation for Generic Polynomials Using PCLMULQDQ Instruction" (Intel,
// 2009).

inline constexpr std::size_t kFoldedBytes = 64;
using FoldedBytes = std::array<std::byte, kFoldedBytes>;

// `blocks` are one or more of kFoldedBytes, and continue a message of `checksum`. What comes back
// continues one of kFoldable instead, to the same checksum.
using Fold = FoldedBytes (*)(std::uint32_t checksum, std::span<const std::byte> blocks);
inline constexpr std::uint32_t kFoldable = 0xFFFFFFFF;  // inverted, so that it adds nothing

// The ways that this processor has, the fastest one last; none where it has no such products.
std::span<const Fold> Folds();

}  // namespace headless
