#include "recorder/tape/scene_digest.h"

#include <algorithm>
#include <array>
#include <cinttypes>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <vector>

#include "platform/narrow_path.h"
#include "recorder/stream/record_writer.h"

namespace recorder {
namespace {

constexpr std::size_t kBlockWords = 1 << 13;

std::string InHexadecimal(std::uint64_t value) {
    std::array<char, 17> text{};
    std::snprintf(text.data(), text.size(), "%016" PRIx64, value);
    return text.data();
}

}  // namespace

std::string DigestOfFile(const std::string& path) {
    std::ifstream file(platform::FromNarrow(path), std::ios::binary);
    if (!file) return {};
    std::uint64_t digest = 0;
    std::uint64_t size = 0;
    std::vector<std::uint64_t> block(kBlockWords);
    auto* const bytes = reinterpret_cast<char*>(block.data());
    while (file.read(bytes, kBlockWords * 8), file.gcount() > 0) {
        const auto count = static_cast<std::size_t>(file.gcount());
        std::fill(bytes + count, bytes + (count + 7) / 8 * 8, '\0');
        for (std::size_t word = 0; word < (count + 7) / 8; ++word)
            digest = Mix(digest, block[word]);
        size += count;
    }
    digest = Mix(digest, size);
    return file.bad() ? std::string() : InHexadecimal(digest);
}

}  // namespace recorder
