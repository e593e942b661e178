#include "replay_core/state/compress.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <vector>

#include "tvl/huffman_buffer.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes Decompressed(const Bytes& bytes) {
    return HuffmanBuffer(bytes.data(), static_cast<std::int32_t>(bytes.size())).Decompress();
}

// From one symbol to all 256, evenly spread or most of them rare.
Bytes RandomData(std::mt19937& random) {
    Bytes data(random() % 3000);
    const std::uint32_t symbols = 1 + random() % 256;
    const bool isSkewed = random() % 2 == 0;
    for (std::uint8_t& byte : data)
        byte = static_cast<std::uint8_t>(random() % (isSkewed ? 1 + random() % symbols : symbols));
    return data;
}

TEST(Compress, ComesBackWhateverTheDataIs) {
    std::mt19937 random(6);
    for (int round = 0; round < 300; ++round) {
        const Bytes data = RandomData(random);
        ASSERT_EQ(Decompressed(replay::Compress(data).value()), data) << "round " << round;
    }
    EXPECT_EQ(Decompressed(replay::Compress(Bytes(100'000, 'x')).value()), Bytes(100'000, 'x'));
}

}  // namespace
