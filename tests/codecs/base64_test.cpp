#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "tvl/base64_buffer.h"

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
                          {"Zm9v", "foo", true},
                          {"Zm9vYg==", "foob", true},
                          {"++//", "\xFB\xEF\xFF", true},
                          {"Zm9", ""},   // no whole group
                          {"Zm=v", ""},  // a padding where a character is needed
                          {"Z===", ""},
                          {"Zm9vZg=", ""},
                          {"Zm9v\nZg=", ""},  // a line end within two whole groups
                          {"Zm9vZm-_", ""},   // the alphabet for URLs
                          {"Zm9v\xE4m9v", ""},
                          {std::string("Zm9\0", 4), ""},
                          {"Zh==", "f"},  // left-over bits count for nothing
                          {"Zm9=", "fo"},
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
    EXPECT_TRUE(Base64Buffer("foo", -1).CopyTo(room, 0));
    EXPECT_TRUE(Base64Buffer(nullptr, 3).Bytes().empty());
}

}  // namespace
