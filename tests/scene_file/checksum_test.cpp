#include "headless/storage/checksum.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <algorithm>
#include <random>
#include <vector>

#include "headless/storage/folding.h"

namespace {

std::uint32_t ByTables(std::uint32_t checksum, std::span<const std::byte> bytes) {
    return static_cast<std::uint32_t>(
        crc32_z(checksum, reinterpret_cast<const Bytef*>(bytes.data()), bytes.size()));
}

// However many bytes are told at once, wherever these lie, and with some that are filled in later.
TEST(Checksums, AreThoseOfZlib) {
    std::minstd_rand random(1);
    const auto upTo = [&](std::size_t most) { return random() % (most + 1); };
    // Of all digits of a length each number is as likely as any other.
    const auto length = [&](std::size_t most) {
        return upTo(std::min(most, upTo(1U << upTo(16))));
    };
    for (int message = 0; message < 3000; ++message) {
        std::vector<std::byte> bytes(length(1 << 16));
        std::ranges::generate(bytes, [&] { return static_cast<std::byte>(random() >> 8); });
        const std::uint32_t expected = ByTables(0, bytes);

        const std::size_t hole = upTo(bytes.size());
        const auto late = std::span(bytes).subspan(hole, length(bytes.size() - hole));
        const std::vector<std::byte> values(late.begin(), late.end());
        std::ranges::fill(late, std::byte{0});

        headless::Checksum checksum;
        for (std::span<const std::byte> left(bytes); !left.empty();) {
            const auto piece = left.first(length(left.size()));
            checksum.Append(piece);
            left = left.subspan(piece.size());
        }
        checksum.FillIn(values, bytes.size() - hole - values.size());
        ASSERT_EQ(checksum.Value(), expected) << "message " << message;
    }
}

TEST(Checksums, StayTheSameByEachWayOfFolding) {
    std::minstd_rand random(1);
    std::vector<std::byte> bytes(40 * headless::kFoldedBytes);
    for (std::size_t start = 0; start < 1500; ++start) {
        std::ranges::generate(bytes, [&] { return static_cast<std::byte>(random() >> 8); });
        const std::size_t blocks = 1 + random() % 16;
        const auto folded = std::span(bytes).subspan(start, blocks * headless::kFoldedBytes);
        const auto before = static_cast<std::uint32_t>(random());
        for (const headless::Fold fold : headless::Folds())
            ASSERT_EQ(ByTables(headless::kFoldable, fold(before, folded)), ByTables(before, folded))
                << blocks << " blocks";
    }
}

}  // namespace
