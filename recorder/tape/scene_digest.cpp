#include "recorder/tape/scene_digest.h"

#include <array>
#include <cinttypes>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <vector>

#include "platform/narrow_path.h"

namespace recorder {
namespace {

constexpr std::uint64_t kBasis = 0xcbf2'9ce4'8422'2325;
constexpr std::uint64_t kPrime = 0x0000'0100'0000'01b3;
constexpr std::size_t kBlock = 1 << 16;

std::string InHexadecimal(std::uint64_t value) {
    std::array<char, 17> text{};
    std::snprintf(text.data(), text.size(), "%016" PRIx64, value);
    return text.data();
}

}  // namespace

std::string DigestOfFile(const std::string& path) {
    std::ifstream file(platform::FromNarrow(path), std::ios::binary);
    if (!file) return {};
    std::uint64_t digest = kBasis;
    std::vector<char> block(kBlock);
    while (file.read(block.data(), kBlock), file.gcount() > 0)
        for (std::streamsize at = 0; at < file.gcount(); ++at) {
            digest ^= static_cast<unsigned char>(block[static_cast<std::size_t>(at)]);
            digest *= kPrime;
        }
    return file.bad() ? std::string() : InHexadecimal(digest);
}

}  // namespace recorder
