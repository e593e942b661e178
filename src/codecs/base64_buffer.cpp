#include "tvl/base64_buffer.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <span>
#include <string_view>

namespace {

constexpr std::string_view kAlphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr char kPadding = '=';
constexpr std::size_t kGroupBytes = 3;
constexpr std::size_t kGroupCharacters = 4;

// How many groups are coded at a time: into a buffer that stays in the nearest cache, and from
// there to the end of the result, whose memory is thus written once.
constexpr std::size_t kRunGroups = 1024;

// A bit beyond a group's 24: the character is not in the alphabet.
constexpr std::uint32_t kNoValue = 1U << 24;

using Pair = std::array<char, 2>;

// The two characters of every 12 bits.
constexpr auto kPairs = [] {
    std::array<Pair, 64 * 64> pairs{};
    for (std::size_t bits = 0; bits < pairs.size(); ++bits)
        pairs[bits] = {kAlphabet[bits >> 6], kAlphabet[bits & 63]};
    return pairs;
}();

// What every character stands for, at each of the four places of a group.
constexpr auto kValues = [] {
    std::array<std::array<std::uint32_t, 256>, kGroupCharacters> values{};
    for (std::size_t place = 0; place < kGroupCharacters; ++place) {
        values[place].fill(kNoValue);
        for (std::size_t i = 0; i < kAlphabet.size(); ++i)
            values[place][static_cast<std::uint8_t>(kAlphabet[i])] =
                static_cast<std::uint32_t>(i << (18 - 6 * place));
    }
    return values;
}();

std::uint32_t ValueOf(const char* group, std::size_t place) {
    return kValues[place][static_cast<std::uint8_t>(group[place])];
}

void PutBytes(std::uint32_t bits, std::size_t count, std::uint8_t* to) {
    for (std::size_t i = 0; i < count; ++i)
        to[i] = static_cast<std::uint8_t>(bits >> (16 - 8 * i));
}

// Appends the bytes of four characters; false if one that is needed is not in the alphabet. Left of
// three for three bytes are the first two always, and the third for two bytes.
bool DecodeGroup(const char* group, std::vector<std::uint8_t>& bytes) {
    const std::size_t count = group[3] != kPadding ? 3 : group[2] != kPadding ? 2 : 1;
    std::uint32_t bits = 0;
    for (std::size_t place = 0; place <= count; ++place)
        bits |= ValueOf(group, place);
    if (bits >= kNoValue) return false;
    std::array<std::uint8_t, kGroupBytes> decoded{};
    PutBytes(bits, count, decoded.data());
    bytes.insert(bytes.end(), decoded.begin(),
                 decoded.begin() + static_cast<std::ptrdiff_t>(count));
    return true;
}

// Appends the bytes of the groups in front that are full and sound, a run at most, and gives their
// number.
std::size_t DecodeRun(std::string_view text, std::vector<std::uint8_t>& bytes) {
    std::array<std::uint8_t, kRunGroups * kGroupBytes> decoded;
    const std::size_t most = std::min(text.size() / kGroupCharacters, kRunGroups);
    const char* group = text.data();
    std::size_t groups = 0;
    for (; groups < most; ++groups, group += kGroupCharacters) {
        const std::uint32_t bits =
            ValueOf(group, 0) | ValueOf(group, 1) | ValueOf(group, 2) | ValueOf(group, 3);
        if (bits >= kNoValue) break;
        PutBytes(bits, kGroupBytes, &decoded[groups * kGroupBytes]);
    }
    bytes.insert(bytes.end(), decoded.data(), decoded.data() + groups * kGroupBytes);
    return groups;
}

// The characters of whole groups, at `to`.
void EncodeGroups(std::span<const std::uint8_t> bytes, char* to) {
    for (std::size_t at = 0; at < bytes.size(); at += kGroupBytes, to += kGroupCharacters) {
        const std::uint32_t bits =
            std::uint32_t{bytes[at]} << 16 | std::uint32_t{bytes[at + 1]} << 8 | bytes[at + 2];
        std::memcpy(to, &kPairs[bits >> 12], sizeof(Pair));
        std::memcpy(to + sizeof(Pair), &kPairs[bits & 4095], sizeof(Pair));
    }
}

// Appends the group of the one or two bytes that are left.
void EncodeRest(std::span<const std::uint8_t> bytes, std::string& text) {
    std::array<std::uint8_t, kGroupBytes> group{};
    std::ranges::copy(bytes, group.begin());
    std::array<char, kGroupCharacters> characters;
    EncodeGroups(group, characters.data());
    std::fill(characters.begin() + static_cast<std::ptrdiff_t>(bytes.size()) + 1, characters.end(),
              kPadding);
    text.append(characters.data(), characters.size());
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
    std::string_view rest = text;
    while (!rest.empty()) {
        const std::size_t groups = DecodeRun(rest, bytes_);
        rest.remove_prefix(groups * kGroupCharacters);
        if (groups == kRunGroups || rest.empty()) continue;
        if (!DecodeGroup(rest.data(), bytes_)) {
            bytes_.clear();
            return;
        }
        rest.remove_prefix(kGroupCharacters);
    }
}

std::string Base64Buffer::ToText() const {
    std::string text;
    text.reserve((bytes_.size() + kGroupBytes - 1) / kGroupBytes * kGroupCharacters);
    std::span<const std::uint8_t> rest = bytes_;
    std::array<char, kRunGroups * kGroupCharacters> characters;
    while (rest.size() >= kGroupBytes) {
        const std::size_t groups = std::min(rest.size() / kGroupBytes, kRunGroups);
        EncodeGroups(rest.first(groups * kGroupBytes), characters.data());
        text.append(characters.data(), groups * kGroupCharacters);
        rest = rest.subspan(groups * kGroupBytes);
    }
    if (!rest.empty()) EncodeRest(rest, text);
    return text;
}

bool Base64Buffer::CopyTo(void* target, std::int32_t size) const {
    if (size < 0 || static_cast<std::size_t>(size) < bytes_.size()) return false;
    if (bytes_.empty()) return true;
    if (!target) return false;
    std::memcpy(target, bytes_.data(), bytes_.size());
    return true;
}
