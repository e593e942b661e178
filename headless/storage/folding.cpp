#include "headless/storage/folding.h"

#if defined(__x86_64__)

#include <immintrin.h>

#include <bit>

namespace headless {
namespace {

// A quarter of a block. Its first bit has the highest power, as in the whole message.
constexpr std::size_t kLaneBytes = sizeof(__m128i);

// The remainder of a power of x, with its own highest power in the lowest bit of the upper half.
consteval std::int64_t PowerOfX(std::size_t power) {
    constexpr std::uint32_t kPolynomial = 0xEDB88320;  // x^32 left out, x^31 in the lowest bit
    std::uint32_t remainder = 1U << 31;
    while (power-- > 0)
        remainder = remainder >> 1 ^ (remainder % 2 != 0 ? kPolynomial : 0);
    return std::bit_cast<std::int64_t>(std::uint64_t{remainder} << 32);
}

// By how much a lane is moved. Its earlier half lies 64 bits further ahead; the product of two
// reflected halves is one power too low in the place of a lane, which the powers make up for.
constexpr std::size_t kMovedBits = 8 * kFoldedBytes;
constexpr std::int64_t kMovesEarlier = PowerOfX(kMovedBits + 64 - 1);
constexpr std::int64_t kMovesLater = PowerOfX(kMovedBits - 1);

__m128i LaneAt(const std::byte* block, std::size_t lane) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(block + lane * kLaneBytes));
}

// A lane, moved a block on, in the sum with what is there.
[[gnu::target("pclmul")]] inline __m128i Moved(__m128i lane, __m128i there) {
    const __m128i moves = _mm_set_epi64x(kMovesLater, kMovesEarlier);
    const __m128i earlier = _mm_clmulepi64_si128(lane, moves, 0x00);
    const __m128i later = _mm_clmulepi64_si128(lane, moves, 0x11);
    return _mm_xor_si128(_mm_xor_si128(earlier, later), there);
}

// Four lanes at a time, so that none waits for its product before.
[[gnu::target("pclmul")]] FoldedBytes FoldedByProducts(std::uint32_t checksum,
                                                       std::span<const std::byte> blocks) {
    const __m128i start = _mm_cvtsi32_si128(std::bit_cast<std::int32_t>(~checksum));
    const std::byte* block = blocks.data();
    const std::byte* const last = block + blocks.size() - kFoldedBytes;
    __m128i first = _mm_xor_si128(LaneAt(block, 0), start);
    __m128i second = LaneAt(block, 1);
    __m128i third = LaneAt(block, 2);
    __m128i fourth = LaneAt(block, 3);
    while (block != last) {
        block += kFoldedBytes;
        first = Moved(first, LaneAt(block, 0));
        second = Moved(second, LaneAt(block, 1));
        third = Moved(third, LaneAt(block, 2));
        fourth = Moved(fourth, LaneAt(block, 3));
    }
    const __m128i lanes[] = {first, second, third, fourth};
    static_assert(sizeof lanes == kFoldedBytes);
    return std::bit_cast<FoldedBytes>(lanes);
}

}  // namespace

std::optional<FoldedBytes> Folded(std::uint32_t checksum, std::span<const std::byte> blocks) {
    if (blocks.empty() || !__builtin_cpu_supports("pclmul")) return std::nullopt;
    return FoldedByProducts(checksum, blocks);
}

}  // namespace headless

#else

namespace headless {

std::optional<FoldedBytes> Folded(std::uint32_t, std::span<const std::byte>) {
    return std::nullopt;
}

}  // namespace headless

#endif
