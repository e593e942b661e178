#include <gtest/gtest.h>

#include "tvl/base64_buffer.h"
#include "tvl/huffman_buffer.h"

namespace {

TEST(Base64, GivesTheStandardTextAndDecodesItGroupByGroupOrNotAtAll) {
    struct Case {
        std::string text;
        std::string bytes;
        bool isStandard = false;
    };
    const Case cases[] = {{"", "", true},
                          {"Zg==", "f", true},
                          {"Zm8=", "fo", true},
                          {"Zm9vYg==", "foob", true},
                          {"++//", "\xFB\xEF\xFF", true},
                          {"Zm9", ""},   // no whole group
                          {"Zm=v", ""},  // a padding where a character is needed
                          {"Z===", ""},
                          {"Zm9v\nZg=", ""},  // a line end within two whole groups
                          {"Zm9v\xE4m9v", ""},
                          {std::string("Zm9\0", 4), ""},
                          {"Zh==", "f"},        // left-over bits count for nothing
                          {"Zg==Zg==", "ff"}};  // padding in the middle
    for (const auto& [text, bytes, isStandard] : cases) {
        const std::vector<std::uint8_t> expected(bytes.begin(), bytes.end());
        EXPECT_EQ(Base64Buffer(text).Bytes(), expected) << text;
        const Base64Buffer whole(bytes.data(), static_cast<std::int32_t>(bytes.size()));
        EXPECT_EQ(whole.ToText() == text, isStandard) << text;
    }
}

TEST(Base64, CopiesOnlyIntoRoomForAllOfIt) {
    const Base64Buffer three("foo", 3);
    char room[] = "....";
    EXPECT_FALSE(three.CopyTo(room, 2) || three.CopyTo(room, -1) || three.CopyTo(nullptr, 3));
    EXPECT_STREQ(room, "....");
    EXPECT_TRUE(three.CopyTo(room, 4));
    EXPECT_STREQ(room, "foo.");
    for (const Base64Buffer& none : {Base64Buffer("foo", -1), Base64Buffer(nullptr, 3)})
        EXPECT_TRUE(none.CopyTo(room, 0));
}

using Table = std::vector<std::pair<std::uint8_t, std::uint32_t>>;  // symbol and frequency

std::string Stream(std::int32_t size, const Table& table, const std::string& coded = {}) {
    std::string stream;
    const auto append = [&](std::uint32_t number) {
        for (int shift = 0; shift < 32; shift += 8)
            stream.push_back(static_cast<char>(number >> shift));
    };
    for (const auto number : {0x5331CA, 100, static_cast<std::int32_t>(table.size()), size})
        append(static_cast<std::uint32_t>(number));
    for (const auto& [symbol, frequency] : table) {
        stream.push_back(static_cast<char>(symbol));
        append(frequency);
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
const std::string kAbc("\xCA\x31\x53\0\x64\0\0\0\3\0\0\0\3\0\0\0a\1\0\0\0b\1\0\0\0c\1\0\0\0\x0D",
                       32);

// The first listed is bit 0, whatever the frequencies; a symbol's way goes from the lowest bit up.
TEST(Huffman, DecodesAsFarAsThereAreBitsByTheTableAsItStands) {
    const std::pair<std::string, std::string> cases[] = {
        {kAbc, "abc"},
        {Stream(3, kTwo, "\3"), "aab"},
        {Stream(INT32_MAX, kTwo, "\3"), "aabbbbbb"},
        {Stream(9, kTwo), ""},
        {Stream(0, kTwo, "\3"), ""},
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
