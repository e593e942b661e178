#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "tests/codecs/plain_codecs.h"
#include "tvl/base64_buffer.h"

namespace {

using plain::Bytes;

Bytes RandomBytes(std::mt19937& random, std::size_t count) {
    Bytes bytes(count);
    for (std::uint8_t& byte : bytes)
        byte = static_cast<std::uint8_t>(random());
    return bytes;
}

// Every length up to some words and buffers, and texts with one to three bytes of any value or of
// padding anywhere.
TEST(CodecLaws, Base64IsWhatItIsDefinedToBeForEveryLengthAndDamage) {
    std::mt19937 random(1);
    for (std::size_t length = 0; length < 9000; length += length < 300 ? 1 : 1 + random() % 97) {
        const Bytes bytes = RandomBytes(random, length);
        std::string text = Base64Buffer(bytes.data(), static_cast<std::int32_t>(length)).ToText();
        ASSERT_EQ(text, plain::ToBase64(bytes)) << length;
        ASSERT_EQ(Base64Buffer(text).Bytes(), bytes) << length;
        for (int damage = 0; damage < 12 && !text.empty(); ++damage) {
            std::string damaged = text;
            for (int count = damage % 3; count >= 0; --count) {
                const bool isPadding = random() % 2 == 0;
                const std::size_t at = random() % text.size();
                if (isPadding && random() % 2 == 0) damaged[at | 3] = '=';
                damaged[isPadding ? at | 2 : at] = isPadding ? '=' : static_cast<char>(random());
            }
            ASSERT_EQ(Base64Buffer(damaged).Bytes(), plain::FromBase64(damaged)) << damaged;
        }
    }
}

// A table of `count` symbols, which may come twice, in an order that is ascending or not. The more
// `spread` out the frequencies, the deeper the tree; it is deepest, and its longest code all ones,
// where each symbol is as frequent as all before it together.
std::vector<HuffmanRecord> RandomLeaves(std::mt19937& random, std::size_t count,
                                        std::size_t spread) {
    const bool isDeepest = random() % 4 == 0;
    std::vector<HuffmanRecord> leaves(isDeepest ? 31 : count);
    for (std::size_t i = 0; i < leaves.size(); ++i) {
        const std::size_t frequency = isDeepest ? (std::size_t{1} << i) / 2 + (i == 0 ? 1 : 0)
                                                : (random() & 0x7FFFFFFF) >> random() % spread;
        leaves[i].symbol = static_cast<std::int32_t>(random() % 256);
        leaves[i].frequency = static_cast<std::int32_t>(frequency);
    }
    if (random() % 3 != 0) std::ranges::sort(leaves, {}, &HuffmanRecord::frequency);
    return leaves;
}

Bytes StreamOf(const std::vector<HuffmanRecord>& leaves, std::size_t size, const Bytes& coded) {
    Bytes stream;
    const auto append = [&](std::size_t number) {
        for (int shift = 0; shift < 32; shift += 8)
            stream.push_back(static_cast<std::uint8_t>(number >> shift));
    };
    for (const std::size_t number : {std::size_t{0x5331CA}, std::size_t{100}, leaves.size(), size})
        append(number);
    for (const HuffmanRecord& leaf : leaves) {
        stream.push_back(static_cast<std::uint8_t>(leaf.symbol));
        append(static_cast<std::size_t>(leaf.frequency));
    }
    stream.insert(stream.end(), coded.begin(), coded.end());
    return stream;
}

// Any bits are the way to some symbols, so that every coded data is sound; those with runs of one
// bit lead deep down. Sizes end within the data and beyond it.
TEST(CodecLaws, HuffmanDecodesWhatAWalkDownTheTreeGives) {
    std::mt19937 random(2);
    for (int round = 0; round < 3000; ++round) {
        const auto leaves =
            RandomLeaves(random, 2 + random() % (round % 5 == 0 ? 255 : 40), 1 + random() % 31);
        Bytes coded = RandomBytes(random, random() % (round % 7 == 0 ? 20000 : 3000));
        for (std::uint8_t& byte : coded)
            if (const auto kind = random() % 16; kind < 2 && round % 2 == 0)
                byte = kind == 0 ? 0x00 : 0xFF;
        // So that a long code is cut by the end of the data.
        const auto tail =
            static_cast<std::ptrdiff_t>(std::min<std::size_t>(coded.size(), random() % 8));
        std::fill(coded.end() - tail, coded.end(), 0xFF);
        const std::size_t size = random() % 2 == 0 ? INT32_MAX : random() % (coded.size() * 3 + 9);
        const Bytes stream = StreamOf(leaves, size, coded);
        const HuffmanBuffer buffer(stream.data(), static_cast<std::int32_t>(stream.size()));
        ASSERT_EQ(buffer.Decompress(), plain::Walk(leaves, coded, size)) << round;
    }
}

}  // namespace
