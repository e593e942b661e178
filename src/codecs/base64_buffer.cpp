#include "tvl/base64_buffer.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <string_view>

namespace {

constexpr std::string_view kAlphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr char kPadding = '=';
constexpr std::size_t kGroupBytes = 3;
constexpr std::size_t kGroupCharacters = 4;
constexpr std::uint32_t kNoValue = 64;

constexpr auto kValues = [] {
    std::array<std::uint8_t, 256> values{};
    values.fill(kNoValue);
    for (std::size_t i = 0; i < kAlphabet.size(); ++i)
        values[static_cast<std::uint8_t>(kAlphabet[i])] = static_cast<std::uint8_t>(i);
    return values;
}();

std::size_t BytesIn(std::string_view group) {
    if (group[3] != kPadding) return 3;
    return group[2] != kPadding ? 2 : 1;
}

// Appends the bytes of four characters; false if one that is needed is not in the alphabet.
bool DecodeGroup(std::string_view group, std::vector<std::uint8_t>& bytes) {
    const std::size_t count = BytesIn(group);
    std::uint32_t bits = 0;  // the group's 24, from the highest
    for (std::size_t i = 0; i < kGroupCharacters; ++i) {
        const bool isNeeded = i <= count;
        const std::uint32_t value = isNeeded ? kValues[static_cast<std::uint8_t>(group[i])] : 0;
        if (value == kNoValue) return false;
        bits = bits << 6 | value;
    }
    for (std::size_t i = 0; i < count; ++i)
        bytes.push_back(static_cast<std::uint8_t>(bits >> (16 - 8 * i)));
    return true;
}

// Appends the four characters of up to three bytes.
void EncodeGroup(const std::uint8_t* bytes, std::size_t count, std::string& text) {
    std::uint32_t bits = 0;  // the group's 24, from the highest
    for (std::size_t i = 0; i < count; ++i)
        bits |= static_cast<std::uint32_t>(bytes[i]) << (16 - 8 * i);
    for (std::size_t i = 0; i < kGroupCharacters; ++i)
        text.push_back(i <= count ? kAlphabet[bits >> (18 - 6 * i) & 63] : kPadding);
}

}  // namespace

Base64Buffer::Base64Buffer(const void* bytes, std::int32_t count) {
    if (!bytes || count <= 0) return;
    const auto* const first = static_cast<const std::uint8_t*>(bytes);
    bytes_.assign(first, first + count);
}

Base64Buffer::Base64Buffer(const std::string& text) {
    if (text.size() % kGroupCharacters != 0) return;
    bytes_.reserve(text.size() / kGroupCharacters * kGroupBytes);
    const std::string_view whole = text;
    for (std::size_t at = 0; at < whole.size(); at += kGroupCharacters) {
        if (DecodeGroup(whole.substr(at, kGroupCharacters), bytes_)) continue;
        bytes_.clear();
        return;
    }
}

std::string Base64Buffer::ToText() const {
    std::string text;
    text.reserve((bytes_.size() + kGroupBytes - 1) / kGroupBytes * kGroupCharacters);
    for (std::size_t at = 0; at < bytes_.size(); at += kGroupBytes)
        EncodeGroup(&bytes_[at], std::min(kGroupBytes, bytes_.size() - at), text);
    return text;
}

bool Base64Buffer::CopyTo(void* target, std::int32_t size) const {
    if (size < 0 || static_cast<std::size_t>(size) < bytes_.size()) return false;
    if (bytes_.empty()) return true;
    if (!target) return false;
    std::memcpy(target, bytes_.data(), bytes_.size());
    return true;
}
