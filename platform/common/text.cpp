#include "platform/common/text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>

namespace platform {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

char LowerCaseLetter(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

char32_t CodeUnit(std::string_view bytes, std::size_t at) {
    return static_cast<char32_t>(static_cast<std::uint8_t>(bytes[at]) |
                                 static_cast<std::uint8_t>(bytes[at + 1]) << 8);
}

bool IsLeadingSurrogate(char32_t unit) {
    return unit >= 0xD800 && unit < 0xDC00;
}
bool IsTrailingSurrogate(char32_t unit) {
    return unit >= 0xDC00 && unit < 0xE000;
}

void AppendUtf8(std::string& text, char32_t code) {
    const auto continuation = [&](int shift) {
        text += static_cast<char>(0x80 | ((code >> shift) & 0x3F));
    };
    if (code < 0x80) {
        text += static_cast<char>(code);
    } else if (code < 0x800) {
        text += static_cast<char>(0xC0 | (code >> 6));
        continuation(0);
    } else if (code < 0x10000) {
        text += static_cast<char>(0xE0 | (code >> 12));
        continuation(6);
        continuation(0);
    } else {
        text += static_cast<char>(0xF0 | (code >> 18));
        continuation(12);
        continuation(6);
        continuation(0);
    }
}

}  // namespace

std::string LowerCase(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(), LowerCaseLetter);
    return lower;
}

bool EqualWithoutCase(std::string_view left, std::string_view right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char l, char r) { return LowerCaseLetter(l) == LowerCaseLetter(r); });
}

std::size_t CopyText(std::string_view text, char* buffer, std::size_t size) {
    const std::size_t length = text.copy(buffer, size - 1);
    buffer[length] = '\0';
    return length;
}

std::string Utf8FromUtf16LittleEndian(std::string_view bytes) {
    std::string text;
    const std::size_t end = bytes.size() / 2 * 2;
    for (std::size_t at = 0; at < end; at += 2) {
        char32_t code = CodeUnit(bytes, at);
        if (IsLeadingSurrogate(code) && at + 2 < end &&
            IsTrailingSurrogate(CodeUnit(bytes, at + 2))) {
            at += 2;
            code = 0x10000 + ((code - 0xD800) << 10) + (CodeUnit(bytes, at) - 0xDC00);
        } else if (IsLeadingSurrogate(code) || IsTrailingSurrogate(code)) {
            code = kReplacement;
        }
        AppendUtf8(text, code);
    }
    return text;
}

std::string NotOverAfter(double seconds) {
    std::array<char, 32> text;
    const auto end = std::to_chars(text.data(), text.data() + text.size(), seconds).ptr;
    return "not over after " + std::string(text.data(), end) + " seconds";
}

}  // namespace platform
