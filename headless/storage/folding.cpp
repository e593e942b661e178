#include "headless/storage/folding.h"

#if defined(__x86_64__)

#include <immintrin.h>

#include <bit>

namespace headless {
namespace {

// A lane is 128 bits of the message, whose first bit has the highest power of x.
constexpr std::size_t kLane = sizeof(__m128i);
constexpr std::size_t kPair = sizeof(__m256i);

// The remainder of a power of x, with its own highest power in the lowest bit of the upper half.
constexpr std::int64_t PowerOfX(std::size_t power) {
    constexpr std::uint32_t kPolynomial = 0xEDB88320;  // x^32 left out, x^31 in the lowest bit
    std::uint32_t remainder = 1U << 31;
    while (power-- > 0)
        remainder = remainder >> 1 ^ (remainder % 2 != 0 ? kPolynomial : 0);
    return std::bit_cast<std::int64_t>(std::uint64_t{remainder} << 32);
}

// What moves a lane by so many bytes. Its earlier half has 64 bits further to go, and a product of
// such halves comes out one power too high.
template <std::size_t Bytes>
__m128i Move() {
    constexpr std::int64_t kEarlier = PowerOfX(8 * Bytes + 64 - 1);
    constexpr std::int64_t kLater = PowerOfX(8 * Bytes - 1);
    return _mm_set_epi64x(kLater, kEarlier);
}

// What continuing a checksum adds to the first lane.
__m128i StartOf(std::uint32_t checksum) {
    return _mm_cvtsi32_si128(std::bit_cast<std::int32_t>(~checksum));
}

__m128i LaneAt(const std::byte* place) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(place));
}

// A lane that is moved, in the sum with the one that is there.
[[gnu::target("pclmul")]] inline __m128i Moved(__m128i lane, __m128i move, __m128i there) {
    const __m128i earlier = _mm_clmulepi64_si128(lane, move, 0x00);
    const __m128i later = _mm_clmulepi64_si128(lane, move, 0x11);
    return _mm_xor_si128(_mm_xor_si128(earlier, later), there);
}

// Four lanes at a time, so that none waits for its product before.
[[gnu::target("pclmul")]] FoldedBytes FoldedByLanes(std::uint32_t checksum,
                                                    std::span<const std::byte> blocks) {
    const __m128i move = Move<kFoldedBytes>();
    const std::byte* block = blocks.data();
    __m128i first = _mm_xor_si128(LaneAt(block), StartOf(checksum));
    __m128i second = LaneAt(block + kLane);
    __m128i third = LaneAt(block + 2 * kLane);
    __m128i fourth = LaneAt(block + 3 * kLane);
    for (std::size_t left = blocks.size() / kFoldedBytes; --left > 0;) {
        block += kFoldedBytes;
        first = Moved(first, move, LaneAt(block));
        second = Moved(second, move, LaneAt(block + kLane));
        third = Moved(third, move, LaneAt(block + 2 * kLane));
        fourth = Moved(fourth, move, LaneAt(block + 3 * kLane));
    }
    const __m128i lanes[] = {first, second, third, fourth};
    return std::bit_cast<FoldedBytes>(lanes);
}

[[gnu::target("avx2")]] inline __m256i PairAt(const std::byte* place) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(place));
}

[[gnu::target("avx2,vpclmulqdq")]] inline __m256i Moved(__m256i pair, __m256i move, __m256i there) {
    const __m256i earlier = _mm256_clmulepi64_epi128(pair, move, 0x00);
    const __m256i later = _mm256_clmulepi64_epi128(pair, move, 0x11);
    return _mm256_xor_si256(_mm256_xor_si256(earlier, later), there);
}

// The same with two lanes in a register, and two blocks at a time as long as there are two.
[[gnu::target("avx2,vpclmulqdq,pclmul")]] FoldedBytes FoldedByPairs(
    std::uint32_t checksum, std::span<const std::byte> blocks) {
    std::size_t left = blocks.size() / kFoldedBytes;
    if (left == 1) return FoldedByLanes(checksum, blocks);
    const __m256i far = _mm256_broadcastsi128_si256(Move<2 * kFoldedBytes>());
    const __m256i near = _mm256_broadcastsi128_si256(Move<kFoldedBytes>());
    const std::byte* block = blocks.data();
    __m256i first = _mm256_xor_si256(PairAt(block), _mm256_zextsi128_si256(StartOf(checksum)));
    __m256i second = PairAt(block + kPair);
    __m256i third = PairAt(block + 2 * kPair);
    __m256i fourth = PairAt(block + 3 * kPair);
    for (left -= 2, block += 2 * kFoldedBytes; left >= 2; left -= 2, block += 2 * kFoldedBytes) {
        first = Moved(first, far, PairAt(block));
        second = Moved(second, far, PairAt(block + kPair));
        third = Moved(third, far, PairAt(block + 2 * kPair));
        fourth = Moved(fourth, far, PairAt(block + 3 * kPair));
    }
    first = Moved(first, near, third);
    second = Moved(second, near, fourth);
    if (left > 0) {
        first = Moved(first, near, PairAt(block));
        second = Moved(second, near, PairAt(block + kPair));
    }
    const __m256i pairs[] = {first, second};
    return std::bit_cast<FoldedBytes>(pairs);
}

#if defined(_WIN32)
constexpr bool kKeepsPairs = false;  // GCC spills them there as if the stack were aligned for them
#else
constexpr bool kKeepsPairs = true;
#endif

}  // namespace

std::span<const Fold> Folds() {
    static constexpr Fold kFolds[] = {FoldedByLanes, FoldedByPairs};
    if (!__builtin_cpu_supports("pclmul")) return {};
    const bool hasPairs = kKeepsPairs && __builtin_cpu_supports("avx2") != 0 &&
                          __builtin_cpu_supports("vpclmulqdq") != 0;
    return std::span(kFolds).first(hasPairs ? 2 : 1);
}

}  // namespace headless

#else

namespace headless {

std::span<const Fold> Folds() {
    return {};
}

}  // namespace headless

#endif
