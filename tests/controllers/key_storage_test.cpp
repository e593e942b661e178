#include <gtest/gtest.h>

#include <cstring>

#include "headless/memory_chunks.h"
#include "platform/testing.h"
#include "tests/controllers/control_world.h"

namespace {

using Bytes = std::vector<std::byte>;

constexpr std::size_t kTableHead = 12;

class KeyStorage : public testing::Test {
  protected:
    KeyStorage() { platform::SetTickCount(70); }
    ~KeyStorage() override { platform::ClearTickCount(); }

    ControlWorld world_;
};

Bytes Words(std::initializer_list<std::uint32_t> words) {
    Bytes bytes(words.size() * 4);
    std::memcpy(bytes.data(), words.begin(), bytes.size());
    return bytes;
}

Bytes With(Bytes bytes, std::size_t at, std::uint32_t word) {
    std::memcpy(bytes.data() + at, &word, sizeof word);
    return bytes;
}

Bytes Chunk(const Bytes& contents, std::uint16_t id = 1) {
    return headless::SavedBytes([&](ISave* save) {
        save->BeginChunk(id);
        save->Write(contents.data(), static_cast<std::uint32_t>(contents.size()), nullptr);
        return save->EndChunk();
    });
}

TEST_F(KeyStorage, ATableIsOneChunkOfKnownBytes) {
    Alone<OpenScalar> scalar;
    scalar->AddKey({1, -2, 1.0F});
    scalar->AddKey({0, 258, -2.5F});
    scalar->table.currentKey = {0, 5, 0.5F};
    EXPECT_EQ(headless::SavedBytes(*scalar), Chunk(Words({100, 12, 2, 1, 0xFFFFFFFE, 0x3F800000, 0,
                                                          258, 0xC0200000, 0, 5, 0x3F000000})));
    // Twelve floats row by row, and then the flags.
    Alone<OpenTransform> transform;
    transform->table.currentKey = {0, 5, Matrix3({1, 2, 3}, {4, 5, 6}, {7, 8, 9}, {10, 11, 12})};
    transform->table.currentKey.value.flags = 0xA0B0C0D0;
    EXPECT_EQ(headless::SavedBytes(*transform),
              Chunk(Words({100, 60, 0, 0, 5, 0x3F800000, 0x40000000, 0x40400000, 0x40800000,
                           0x40A00000, 0x40C00000, 0x40E00000, 0x41000000, 0x41100000, 0x41200000,
                           0x41300000, 0x41400000, 0xA0B0C0D0})));
}

TEST_F(KeyStorage, ATableComesBackWholeAndItsCachedKeyIsEvaluatedAnewIfItHasKeys) {
    Alone<OpenTransform> written;
    for (int i = 0; i < 5; ++i)
        written->AddKey({static_cast<std::uint32_t>(i), i * 100, MovedBy(static_cast<float>(i))});
    Alone<OpenTransform> read;
    headless::LoadBytes(headless::SavedBytes(*written), *read);
    EXPECT_EQ(read->table.currentKey.time, 70) << "the millisecond counter, taken as ticks";
    EXPECT_FLOAT_EQ(read->table.currentKey.value.m[3][0], 0.7F);
    read->table.currentKey = written->table.currentKey;
    EXPECT_EQ(headless::SavedBytes(*read), headless::SavedBytes(*written));

    Alone<OpenScalar> keyless;
    headless::LoadBytes(Chunk(Words({100, 12, 0, 0, 3, 0x41480000})), *keyless);
    EXPECT_EQ(keyless->table.currentKey.value, 12.5F);
    EXPECT_EQ(keyless->table.currentKey.time, -1);
}

// Keys out of order are sorted, and of equal times the last stands. Gigabytes that are not there
// are not asked for.
TEST_F(KeyStorage, AStrangeChunkIsLeftAloneAndRecordsAreBelievedAsFarAsTheyAreThere) {
    const Bytes whole = Words({100, 12, 4, 0, 3, 0, 0, 1, 0, 0, 2, 0, 0, 1, 0x40400000, 0, 9, 0});
    for (const Bytes& strange : {Chunk(With(whole, 0, 101)), Chunk(With(whole, 4, 60)),
                                 Chunk(With(whole, 8, 0xFFFFFFFF)), Chunk(whole, 2)}) {
        Alone<OpenScalar> read;
        EXPECT_EQ(headless::LoadBytes(strange, *read), IO_OK);
        EXPECT_EQ(read->NumKeys(), 0);
        EXPECT_EQ(read->table.currentKey.time, -1);
    }
    const std::vector<TimeValue> kept[] = {{}, {3}, {1, 3}, {1, 2, 3}, {1, 2, 3}};
    for (std::size_t length = kTableHead; length < whole.size(); length += 4) {
        const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
        for (const std::uint32_t announced : {4U, 0x7FFFFFFFU}) {
            Alone<OpenScalar> read;
            EXPECT_EQ(headless::LoadBytes(Chunk(With(cut, 8, announced)), *read), IO_OK);
            EXPECT_EQ(TimesOf(read->table), kept[(length - kTableHead) / 12]) << length;
            EXPECT_TRUE(length < 60 || read->table.keys[0].value == 3.0F);
        }
    }
}

}  // namespace
