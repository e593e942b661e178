#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "tvl/huffman_buffer.h"

namespace {

using Table = std::vector<std::pair<std::uint8_t, std::uint32_t>>;  // symbol and frequency

void AppendNumber(std::string& bytes, std::uint32_t number) {
    for (int shift = 0; shift < 32; shift += 8)
        bytes.push_back(static_cast<char>(number >> shift));
}

std::string Stream(std::int32_t size, const Table& table, const std::string& coded = {}) {
    std::string stream;
    for (const std::size_t number : {std::size_t{0x5331CA}, std::size_t{100}, table.size()})
        AppendNumber(stream, static_cast<std::uint32_t>(number));
    AppendNumber(stream, static_cast<std::uint32_t>(size));
    for (const auto& [symbol, frequency] : table) {
        stream.push_back(static_cast<char>(symbol));
        AppendNumber(stream, frequency);
    }
    return stream + coded;
}

HuffmanBuffer Held(const std::string& bytes) {
    return {bytes.data(), static_cast<std::int32_t>(bytes.size())};
}

std::string Decompressed(const std::string& bytes) {
    const std::vector<std::uint8_t> data = Held(bytes).Decompress();
    return {data.begin(), data.end()};
}

std::string With(std::string bytes, std::size_t at, int value) {
    bytes[at] = static_cast<char>(value);
    return bytes;
}

const Table kTwo = {{'b', 1}, {'a', 2}};
const std::string kAbc = Stream(3, {{'a', 1}, {'b', 1}, {'c', 1}}, "\x0D");

// The first listed is bit 0, whatever the frequencies; a symbol's way goes from the lowest bit up.
TEST(Huffman, DecodesAsFarAsThereAreBitsByTheTableAsItStands) {
    EXPECT_EQ(kAbc, std::string("\xCA\x31\x53\0\x64\0\0\0\3\0\0\0\3\0\0\0"
                                "a\1\0\0\0b\1\0\0\0c\1\0\0\0\x0D",
                                32));
    const std::pair<std::string, std::string> cases[] = {
        {kAbc, "abc"},
        {Stream(3, kTwo, "\3"), "aab"},
        {Stream(9, kTwo, "\3"), "aabbbbbb"},
        {Stream(INT32_MAX, kTwo, "\3"), "aabbbbbb"},
        {Stream(9, kTwo), ""},
        {Stream(0, kTwo, "\3"), ""},
        {Stream(0, {}), ""},
        {Stream(3, {{'a', 9}, {'b', 1}}, "\4"), "aab"},
        {Stream(3, {{'a', 0}, {'b', 0xFFFFFFFF}}, "\4"), "aab"},
        {Stream(5, {{'x', 5}}), "xxxxx"},
        // A pair comes behind all that are as frequent as it.
        {Stream(4, {{'a', 1}, {'b', 1}, {'c', 2}, {'d', 2}}, "\xD8"), "abcd"},
        {Stream(64 << 20, {{'x', 5}}, "rest"), std::string(64 << 20, 'x')}};
    for (const auto& [stream, text] : cases)
        EXPECT_TRUE(Decompressed(stream) == text) << stream;
    Table all;
    for (int symbol = 0; symbol < 256; ++symbol)
        all.push_back({static_cast<std::uint8_t>(symbol), 0xFFFFFFFF});
    EXPECT_EQ(Decompressed(Stream(2, all, "zz")).size(), 2U);
    // A deep tree, where each leaf is as frequent as all before it together: the rarest two take 30
    // bits, which differ in the last one.
    Table deep = {{'a', 1}};
    for (std::uint8_t i = 1; i < 31; ++i)
        deep.push_back({static_cast<std::uint8_t>('a' + i), 1U << (i - 1)});
    EXPECT_EQ(Decompressed(Stream(1, deep, "\xFF\xFF\xFF\x1F")), "a");
    EXPECT_EQ(Decompressed(Stream(1, deep, "\xFF\xFF\xFF\x3F")), "b");
    EXPECT_EQ(Decompressed(Stream(1, deep, "\xFF\xFF\xFF")), "");
}

TEST(Huffman, GivesBackWhatIsNoStream) {
    const std::string foreign[] = {"",
                                   "<TVL_Plugin/>",
                                   kAbc.substr(0, 15),  // cut in the header
                                   kAbc.substr(0, 30),  // cut in the table
                                   With(kAbc, 0, 0xCB),
                                   With(kAbc, 4, 101),
                                   With(With(kAbc, 8, 1), 9, 1),  // 257 symbols
                                   With(kAbc, 11, 0x80),
                                   With(kAbc, 15, 0x80),  // a negative size
                                   Stream(5, {}),
                                   Stream((64 << 20) + 1, {{'a', 5}})};
    for (const std::string& bytes : foreign)
        EXPECT_EQ(Decompressed(bytes), bytes);
}

TEST(Huffman, GivesATextThatIsNoLongerThanEightBytesForEachByteHeld) {
    EXPECT_EQ(Held({"<plain/>\0rest", 13}).Text(), "<plain/>");
    EXPECT_EQ(Held(Stream(3, {{0, 1}, {'a', 2}}, "\5")).Text(), "a");
    EXPECT_EQ(Held(Stream(64 << 20, {{'<', 5}})).Text(), "");
    // As near to eight as a writer comes: all ones, then the NUL's zero and what fills the byte.
    const std::string ones = With(std::string(100'001, '\xFF'), 100'000, 0);
    EXPECT_EQ(Held(Stream(800'001, {{0, 1}, {'x', 800'000}}, ones)).Text(),
              std::string(800'000, 'x'));
}

}  // namespace
