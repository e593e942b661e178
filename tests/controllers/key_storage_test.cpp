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

    // What stands in the chunk of a controller's table.
    static Bytes Saved(Control& control) {
        Bytes contents;
        headless::LoadBytes(headless::SavedBytes(control), [&](ILoad* load) {
            EXPECT_EQ(load->OpenChunk(), IO_OK);
            EXPECT_EQ(load->CurChunkID(), 1);
            std::byte next{};
            while (load->Read(&next, 1, nullptr) == IO_OK)
                contents.push_back(next);
            load->CloseChunk();
            return load->OpenChunk();
        });
        return contents;
    }
    static void Load(Control& control, const Bytes& contents, std::uint16_t chunk = 1) {
        const Bytes bytes = headless::SavedBytes([&](ISave* save) {
            save->BeginChunk(chunk);
            save->Write(contents.data(), static_cast<std::uint32_t>(contents.size()), nullptr);
            return save->EndChunk();
        });
        EXPECT_EQ(headless::LoadBytes(bytes, control), IO_OK);
    }

    ControlWorld world_;
};

template <class Value>
Bytes With(Bytes bytes, std::size_t at, Value value) {
    std::memcpy(bytes.data() + at, &value, sizeof value);
    return bytes;
}

Bytes Words(std::initializer_list<std::uint32_t> words) {
    Bytes bytes(words.size() * 4);
    std::memcpy(bytes.data(), words.begin(), bytes.size());
    return bytes;
}

TEST_F(KeyStorage, ATableIsOneChunkOfKnownBytes) {
    Alone<OpenScalar> scalar;
    scalar->AddKey({1, -2, 1.0F});
    scalar->AddKey({0, 258, -2.5F});
    scalar->table.currentKey = {0, 5, 0.5F};
    EXPECT_EQ(Saved(*scalar),
              Words({100, 12, 2, 1, 0xFFFFFFFE, 0x3F800000, 0, 258, 0xC0200000, 0, 5, 0x3F000000}));
    // Twelve floats row by row, and then the flags.
    Alone<OpenTransform> transform;
    transform->table.currentKey = {0, 5, Matrix3({1, 2, 3}, {4, 5, 6}, {7, 8, 9}, {10, 11, 12})};
    transform->table.currentKey.value.flags = 0xA0B0C0D0;
    EXPECT_EQ(Saved(*transform),
              Words({100, 60, 0, 0, 5, 0x3F800000, 0x40000000, 0x40400000, 0x40800000, 0x40A00000,
                     0x40C00000, 0x40E00000, 0x41000000, 0x41100000, 0x41200000, 0x41300000,
                     0x41400000, 0xA0B0C0D0}));
}

TEST_F(KeyStorage, ATableComesBackWholeAndItsCachedKeyIsEvaluatedAnewIfItHasKeys) {
    Alone<OpenTransform> written;
    for (int i = 0; i < 5; ++i)
        written->AddKey({static_cast<std::uint32_t>(i), i * 100, MovedBy(static_cast<float>(i))});
    Alone<OpenTransform> read;
    Load(*read, Saved(*written));
    EXPECT_EQ(read->table.currentKey.time, 70) << "the millisecond counter, taken as ticks";
    EXPECT_FLOAT_EQ(read->table.currentKey.value.m[3][0], 0.7F);
    read->table.currentKey = written->table.currentKey;
    EXPECT_EQ(Saved(*read), Saved(*written));

    Alone<OpenScalar> keyless;
    keyless->table.currentKey = {0, 3, 12.5F};
    Alone<OpenScalar> copy;
    Load(*copy, Saved(*keyless));
    EXPECT_EQ(copy->table.currentKey.value, 12.5F);
    EXPECT_EQ(copy->table.currentKey.time, -1);
}

TEST_F(KeyStorage, AStrangeChunkIsLeftAloneAndRecordsAreBelievedAsFarAsTheyAreThere) {
    Alone<OpenScalar> written;
    // Keys out of order are sorted, and of equal times the last stands.
    for (const TimeValue t : {3, 1, 2, 1})
        written->table.keys.push_back({0, t, static_cast<float>(written->table.keys.size())});
    const Bytes whole = Saved(*written);
    const std::pair<std::uint16_t, Bytes> chunks[] = {
        {1, With(whole, 0, 101)}, {1, With(whole, 4, 60)}, {1, With(whole, 8, -1)}, {2, whole}};
    for (const auto& [id, strange] : chunks) {
        Alone<OpenScalar> read;
        Load(*read, strange, id);
        EXPECT_EQ(read->NumKeys(), 0);
        EXPECT_EQ(read->table.currentKey.time, -1);
    }
    const std::vector<TimeValue> kept[] = {{}, {3}, {1, 3}, {1, 2, 3}, {1, 2, 3}};
    for (std::size_t length = kTableHead; length < whole.size(); length += 4) {
        const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
        const std::vector<TimeValue>& times =
            kept[std::min<std::size_t>((length - kTableHead) / 12, 4)];
        // Gigabytes that are not there are not asked for.
        for (const std::int32_t announced : {4, 0x7FFFFFFF}) {
            Alone<OpenScalar> read;
            Load(*read, With(cut, 8, announced));
            EXPECT_EQ(TimesOf(read->table), times) << length;
            EXPECT_TRUE(length < 60 || read->table.keys[0].value == 3.0F);
        }
    }
}

}  // namespace
