#include "headless/storage/checksum.h"

#include <zlib.h>

#include <algorithm>

#include "headless/storage/folding.h"

namespace headless {
namespace {

std::uint32_t ByTables(std::uint32_t checksum, std::span<const std::byte> bytes) {
    if (bytes.empty()) return checksum;  // nothing at a null pointer begins it anew
    return static_cast<std::uint32_t>(
        crc32_z(checksum, reinterpret_cast<const Bytef*>(bytes.data()), bytes.size()));
}

std::uint32_t Continued(std::uint32_t checksum, std::span<const std::byte> bytes) {
    static const Fold fold = Folds().empty() ? nullptr : Folds().back();
    const auto rest = bytes.last(bytes.size() % kFoldedBytes);
    const auto blocks = bytes.first(bytes.size() - rest.size());
    if (!fold || blocks.empty()) return ByTables(checksum, bytes);
    return ByTables(ByTables(kFoldable, fold(checksum, blocks)), rest);
}

// What a difference in the bytes makes of the checksum, once `count` equal bytes lie behind it.
std::uint32_t Shifted(std::uint32_t difference, std::uint64_t count) {
    constexpr std::uint64_t kMostAtOnce = 1 << 30;  // an offset has 31 bits on some systems
    while (count > 0) {
        const std::uint64_t step = std::min(count, kMostAtOnce);
        difference =
            static_cast<std::uint32_t>(crc32_combine(difference, 0, static_cast<z_off_t>(step)));
        count -= step;
    }
    return difference;
}

}  // namespace

void Checksum::Append(std::span<const std::byte> bytes) {
    value_ = Continued(value_, bytes);
}

// The checksum is linear: that of two messages' difference is the difference of theirs, but for the
// ones that it starts and ends with, which are inverted away here.
void Checksum::FillIn(std::span<const std::byte> bytes, std::uint64_t behind) {
    constexpr std::uint32_t kOnes = 0xFFFFFFFF;
    value_ ^= Shifted(Continued(kOnes, bytes) ^ kOnes, behind);
}

}  // namespace headless
