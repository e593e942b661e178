#include <gtest/gtest.h>

#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

#include "tvl/huffman_buffer.h"

namespace {

using Bytes = std::vector<std::uint8_t>;
using Table = std::vector<std::pair<std::uint8_t, std::uint32_t>>;  // symbol and frequency

Bytes Text(std::string_view text) {
    return {text.begin(), text.end()};
}

void AppendNumber(Bytes& bytes, std::uint32_t number) {
    for (int shift = 0; shift < 32; shift += 8)
        bytes.push_back(static_cast<std::uint8_t>(number >> shift));
}

Bytes Stream(std::int32_t size, const Table& table, const Bytes& coded = {}) {
    Bytes stream;
    AppendNumber(stream, 0x5331CA);
    AppendNumber(stream, 100);
    AppendNumber(stream, static_cast<std::uint32_t>(table.size()));
    AppendNumber(stream, static_cast<std::uint32_t>(size));
    for (const auto& [symbol, frequency] : table) {
        stream.push_back(symbol);
        AppendNumber(stream, frequency);
    }
    stream.insert(stream.end(), coded.begin(), coded.end());
    return stream;
}

Bytes Decompressed(const Bytes& bytes) {
    return HuffmanBuffer(bytes.data(), static_cast<std::int32_t>(bytes.size())).Decompress();
}

Bytes With(Bytes bytes, std::size_t at, std::uint8_t value) {
    bytes[at] = value;
    return bytes;
}

// A deep tree: each leaf is as frequent as all before it together.
Table Doubling(std::uint8_t symbols) {
    Table table = {{0, 1}};
    for (std::uint8_t i = 1; i < symbols; ++i)
        table.push_back({i, 1U << (i - 1)});
    return table;
}

TEST(Huffman, DecodesTheWorkedExamples) {
    const Bytes abc = {0xCA, 0x31, 0x53, 0, 0x64, 0,    0, 0, 3, 0, 0,    0, 3, 0, 0, 0,
                       0x61, 1,    0,    0, 0,    0x62, 1, 0, 0, 0, 0x63, 1, 0, 0, 0, 0x0D};
    const Bytes aab = {0xCA, 0x31, 0x53, 0, 0x64, 0, 0, 0,    2, 0, 0, 0, 3,   0,
                       0,    0,    0x62, 1, 0,    0, 0, 0x61, 2, 0, 0, 0, 0x03};
    EXPECT_EQ(Decompressed(abc), Text("abc"));
    EXPECT_EQ(Decompressed(aab), Text("aab"));
}

TEST(Huffman, SettlesTiesByTheOrderOfTheTable) {
    std::vector<HuffmanRecord> records(4);
    for (std::int32_t i = 0; i < 4; ++i) {
        records[static_cast<std::size_t>(i)].frequency = i < 2 ? 1 : 2;
        records[static_cast<std::size_t>(i)].symbol = i;
    }
    BuildHuffmanTree(records);
    // left, right, parent, frequency, symbol
    const std::int32_t tree[][5] = {{-1, -1, 4, 1, 0}, {-1, -1, 4, 1, 1}, {-1, -1, 5, 2, 2},
                                    {-1, -1, 5, 2, 3}, {0, 1, 6, 2, -1},  {2, 3, 6, 4, -1},
                                    {4, 5, -1, 6, -1}};
    ASSERT_EQ(records.size(), std::size(tree));
    for (std::size_t i = 0; i < records.size(); ++i) {
        EXPECT_EQ(records[i].left, tree[i][0]) << i;
        EXPECT_EQ(records[i].right, tree[i][1]) << i;
        EXPECT_EQ(records[i].parent, tree[i][2]) << i;
        EXPECT_EQ(records[i].frequency, tree[i][3]) << i;
        EXPECT_EQ(records[i].symbol, tree[i][4]) << i;
    }
}

TEST(Huffman, GivesBackWhatIsNoStream) {
    const Bytes abc = Stream(3, {{'a', 1}, {'b', 1}, {'c', 1}}, {0x0D});
    const Bytes foreign[] = {
        {},
        Text("<TVL_Plugin/>"),
        Bytes(abc.begin(), abc.begin() + 15),  // cut in the header
        Bytes(abc.begin(), abc.begin() + 30),  // cut in the table
        With(abc, 0, 0xCB),
        With(abc, 4, 101),
        With(With(abc, 8, 1), 9, 1),  // 257 symbols
        With(abc, 11, 0x80),
        With(abc, 15, 0x80),  // a negative size
        Stream(5, {}),
        Stream((64 << 20) + 1, {{'a', 5}}),
    };
    for (const Bytes& bytes : foreign)
        EXPECT_EQ(Decompressed(bytes), bytes);
}

TEST(Huffman, DecodesAsFarAsThereAreBits) {
    const Table two = {{'b', 1}, {'a', 2}};
    EXPECT_EQ(Decompressed(Stream(8, two, {0x03})), Text("aabbbbbb"));
    EXPECT_EQ(Decompressed(Stream(9, two, {0x03})), Text("aabbbbbb"));
    EXPECT_EQ(Decompressed(Stream(INT32_MAX, two, {0x03})), Text("aabbbbbb"));
    EXPECT_EQ(Decompressed(Stream(9, two)), Bytes());
    EXPECT_EQ(Decompressed(Stream(0, two, {0x03})), Bytes());
    EXPECT_EQ(Decompressed(Stream(0, {})), Bytes());
}

TEST(Huffman, RepeatsALoneSymbolWithoutBits) {
    EXPECT_EQ(Decompressed(Stream(5, {{'x', 5}})), Text("xxxxx"));
    EXPECT_EQ(Decompressed(Stream(5, {{0, 1}}, {1, 2, 3})), Bytes(5));
    EXPECT_EQ(Decompressed(Stream(64 << 20, {{'x', 5}})).size(), std::size_t{64} << 20);
}

TEST(Huffman, GivesATextThatIsNoLongerThanEightBytesForEachByteHeld) {
    const auto textOf = [](const Bytes& bytes) {
        return HuffmanBuffer(bytes.data(), static_cast<std::int32_t>(bytes.size())).Text();
    };
    EXPECT_EQ(textOf(Text("<plain/>")), "<plain/>");
    EXPECT_EQ(textOf(Text({"<plain/>\0rest", 13})), "<plain/>");
    EXPECT_EQ(textOf(Stream(3, {{0, 1}, {'a', 2}}, {0x05})), "a");
    for (const char lone : {'x', '<', '\0'})
        EXPECT_EQ(textOf(Stream(64 << 20, {{static_cast<std::uint8_t>(lone), 5}})), "");

    // As near to eight as a writer comes: all ones, then the NUL's zero and what fills the byte.
    Bytes ones(100'001, 0xFF);
    ones.back() = 0;
    EXPECT_EQ(textOf(Stream(800'001, {{0, 1}, {'x', 800'000}}, ones)), std::string(800'000, 'x'));
}

TEST(Huffman, TakesTheTableAsItStands) {
    // The first listed is bit 0, whatever the frequencies.
    EXPECT_EQ(Decompressed(Stream(3, {{'a', 9}, {'b', 1}}, {0x04})), Text("aab"));
    EXPECT_EQ(Decompressed(Stream(3, {{'a', 0}, {'b', 0xFFFFFFFF}}, {0x04})), Text("aab"));

    Table all;
    for (int symbol = 0; symbol < 256; ++symbol)
        all.push_back({static_cast<std::uint8_t>(symbol), 0xFFFFFFFF});
    const Bytes ends = Decompressed(Stream(2, all, {0x00, 0xFF}));
    EXPECT_EQ(ends.size(), 2U);
}

TEST(Huffman, FollowsTheLongestCodes) {
    // 31 symbols: the rarest two take 30 bits, which differ in the last one.
    EXPECT_EQ(Decompressed(Stream(1, Doubling(31), {0xFF, 0xFF, 0xFF, 0x1F})), Bytes{0});
    EXPECT_EQ(Decompressed(Stream(1, Doubling(31), {0xFF, 0xFF, 0xFF, 0x3F})), Bytes{1});
    EXPECT_EQ(Decompressed(Stream(1, Doubling(31), {0xFF, 0xFF, 0xFF})), Bytes());
}

}  // namespace
