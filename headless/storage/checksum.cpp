#include "headless/storage/checksum.h"

#include <zlib.h>

#include <algorithm>
#include <array>

namespace headless {

std::optional<std::uint32_t> ChecksumOf(std::uint64_t begin, std::uint64_t end,
                                        const ReadBytesAt& read) {
    constexpr std::size_t kBlockBytes = std::size_t{32} * 1024;
    std::array<std::byte, kBlockBytes> block;
    uLong checksum = 0;
    while (begin < end) {
        const auto count =
            static_cast<std::size_t>(std::min<std::uint64_t>(end - begin, kBlockBytes));
        if (!read(begin, std::span(block).first(count))) return std::nullopt;
        checksum = crc32_z(checksum, reinterpret_cast<const Bytef*>(block.data()), count);
        begin += count;
    }
    return static_cast<std::uint32_t>(checksum);
}

}  // namespace headless
