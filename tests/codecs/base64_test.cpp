#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "tvl/base64_buffer.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes Decoded(const std::string& text) {
    return Base64Buffer(text).Bytes();
}

std::string Encoded(const Bytes& bytes) {
    return Base64Buffer(bytes.data(), static_cast<std::int32_t>(bytes.size())).ToText();
}

TEST(Base64, GivesTheStandardTextOfEveryLength) {
    const std::pair<const char*, const char*> vectors[] = {
        {"", ""},
        {"f", "Zg=="},
        {"fo", "Zm8="},
        {"foo", "Zm9v"},
        {"foob", "Zm9vYg=="},
        {"fooba", "Zm9vYmE="},
        {"foobar", "Zm9vYmFy"},
        {"\xFB\xEF\xFF", "++//"},
    };
    for (const auto& [plain, text] : vectors) {
        const std::string_view view = plain;
        const Bytes bytes(view.begin(), view.end());
        EXPECT_EQ(Encoded(bytes), text);
        EXPECT_EQ(Decoded(text), bytes) << text;
    }
}

TEST(Base64, DecodesGroupByGroupOrNothingAtAll) {
    const std::pair<const char*, Bytes> texts[] = {
        {"Zm9", {}},   // no whole group
        {"Zm=v", {}},  // a padding where a character is needed
        {"====", {}},
        {"Z===", {}},
        {"Zm9vZg=", {}},
        {"Zm9v\nZg=", {}},  // a line end within two whole groups
        {"Zm9vZm9 ", {}},
        {"Zm9vZm-_", {}},  // the alphabet for URLs
        {"Zm9v\xE4m9v", {}},
        {"Zh==", {'f'}},  // left-over bits count for nothing
        {"Zm9=", {'f', 'o'}},
        {"Zg==Zg==", {'f', 'f'}},  // padding in the middle
        {"Zm8=Zm9v", {'f', 'o', 'f', 'o', 'o'}},
    };
    for (const auto& [text, bytes] : texts)
        EXPECT_EQ(Decoded(text), bytes) << text;
    EXPECT_TRUE(Decoded(std::string("Zm9\0", 4)).empty());
}

TEST(Base64, CopiesOnlyIntoRoomForAllOfIt) {
    const Base64Buffer three("foo", 3);
    std::uint8_t room[4] = {1, 2, 3, 4};
    EXPECT_FALSE(three.CopyTo(room, 2));
    EXPECT_FALSE(three.CopyTo(room, -1));
    EXPECT_FALSE(three.CopyTo(nullptr, 3));
    EXPECT_EQ(room[0], 1);
    EXPECT_TRUE(three.CopyTo(room, 4));
    EXPECT_EQ(Bytes(room, room + 4), (Bytes{'f', 'o', 'o', 4}));

    EXPECT_TRUE(Base64Buffer("foo", -1).CopyTo(room, 0));
    EXPECT_TRUE(Base64Buffer(nullptr, 3).Bytes().empty());
}

}  // namespace
