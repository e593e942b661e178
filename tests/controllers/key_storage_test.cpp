#include <gtest/gtest.h>

#include <cstring>

#include "controllers/scalar_control.h"
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
void Put(Bytes& bytes, std::size_t at, Value value) {
    std::memcpy(bytes.data() + at, &value, sizeof value);
}

Bytes FromHex(std::string_view hex) {
    Bytes bytes;
    for (std::size_t i = 0; i + 1 < hex.size(); i += 2) {
        if (hex[i] == ' ') {
            --i;
            continue;
        }
        bytes.push_back(
            static_cast<std::byte>(std::stoi(std::string(hex.substr(i, 2)), nullptr, 16)));
    }
    return bytes;
}

TEST_F(KeyStorage, AScalarTableIsOneChunkOfKnownBytes) {
    Alone<OpenScalar> control;
    control->AddKey({1, -2, 1.0f});
    control->AddKey({0, 258, -2.5f});
    control->table.currentKey = {0, 5, 0.5f};
    EXPECT_EQ(Saved(*control), FromHex("64000000 0C000000 02000000"
                                       "01000000 FEFFFFFF 0000803F"
                                       "00000000 02010000 000020C0"
                                       "00000000 05000000 0000003F"));
}

TEST_F(KeyStorage, AMatrixRecordHoldsTwelveFloatsRowByRowAndThenTheFlags) {
    Alone<OpenTransform> control;
    control->table.currentKey = {0, 5, Matrix3({1, 2, 3}, {4, 5, 6}, {7, 8, 9}, {10, 11, 12})};
    control->table.currentKey.value.flags = 0xA0B0C0D0;
    EXPECT_EQ(Saved(*control), FromHex("64000000 3C000000 00000000"
                                       "00000000 05000000"
                                       "0000803F 00000040 00004040"
                                       "00008040 0000A040 0000C040"
                                       "0000E040 00000041 00001041"
                                       "00002041 00003041 00004041"
                                       "D0C0B0A0"));
}

TEST_F(KeyStorage, ATableComesBackWholeAndItsCachedKeyIsEvaluatedAnew) {
    Alone<OpenTransform> written;
    for (int i = 0; i < 5; ++i)
        written->AddKey({static_cast<std::uint32_t>(i), i * 100, MovedBy(static_cast<float>(i))});
    Alone<OpenTransform> read;
    Load(*read, Saved(*written));
    ASSERT_EQ(read->NumKeys(), 5);
    for (std::size_t i = 0; i < 5; ++i) {
        const TarvoKey<Matrix3>& key = read->table.keys[i];
        EXPECT_EQ(key.flags, written->table.keys[i].flags);
        EXPECT_EQ(key.time, written->table.keys[i].time);
        EXPECT_EQ(key.value, written->table.keys[i].value);
        EXPECT_EQ(key.value.flags, written->table.keys[i].value.flags);
    }
    EXPECT_EQ(read->table.currentKey.time, 70) << "the millisecond counter, taken as ticks";
    EXPECT_FLOAT_EQ(read->table.currentKey.value.m[3][0], 0.7f);
}

TEST_F(KeyStorage, WithoutKeysTheSavedValueStands) {
    Alone<OpenScalar> written;
    float value = 12.5f;
    written->SetValue(3, &value, 1, CTRL_ABSOLUTE);
    Alone<OpenScalar> read;
    Load(*read, Saved(*written));
    EXPECT_EQ(read->table.currentKey.value, 12.5f);
    EXPECT_EQ(read->table.currentKey.time, -1);
    EXPECT_EQ(FloatAt(*read, 1000), 12.5f);
}

TEST_F(KeyStorage, AStrangeChunkIsLeftAlone) {
    Alone<OpenScalar> written;
    written->AddKey({0, 10, 1.0f});
    const Bytes whole = Saved(*written);
    Bytes version = whole;
    Put(version, 0, 101);
    Bytes size = whole;
    Put(size, 4, 60);
    const std::pair<std::uint16_t, Bytes> chunks[] = {{1, version}, {1, size}, {2, whole}, {1, {}}};
    for (const auto& [id, strange] : chunks) {
        Alone<OpenScalar> read;
        Load(*read, strange, id);
        EXPECT_EQ(read->NumKeys(), 0);
        EXPECT_EQ(read->table.currentKey.value, 0.0f);
        EXPECT_EQ(read->table.currentKey.time, -1);
    }
    Alone<OpenScalar> read;
    EXPECT_EQ(headless::LoadBytes({}, *read), IO_OK);
    EXPECT_EQ(read->table.currentKey.time, -1);
}

TEST_F(KeyStorage, AnnouncedKeysAreBelievedOnlyAsFarAsTheyAreThere) {
    Alone<OpenScalar> written;
    for (int i = 0; i < 4; ++i)
        written->AddKey({0, i, static_cast<float>(i)});
    const Bytes whole = Saved(*written);
    for (std::size_t length = 0; length < whole.size(); ++length) {
        Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
        const std::size_t records = length < kTableHead ? 0 : (length - kTableHead) / 12;
        Alone<OpenScalar> read;
        Load(*read, cut);
        EXPECT_EQ(read->table.keys.size(), std::min<std::size_t>(records, 4)) << length;
        // Gigabytes that are not there are not asked for.
        if (length < kTableHead) continue;
        Put(cut, 8, 0x7FFFFFFF);
        Alone<OpenScalar> boastful;
        Load(*boastful, cut);
        EXPECT_EQ(boastful->table.keys.size(), records) << length;
    }
    Bytes negative = whole;
    Put(negative, 8, -1);
    Alone<OpenScalar> read;
    Load(*read, negative);
    EXPECT_EQ(read->NumKeys(), 0);
}

TEST_F(KeyStorage, KeysOutOfOrderAreSortedAndOfEqualTimesTheLastStands) {
    Alone<OpenScalar> written;
    const TimeValue times[] = {30, 10, 20, 10, 30};
    for (std::size_t i = 0; i < 5; ++i)
        written->table.keys.push_back({0, times[i], static_cast<float>(i)});
    Alone<OpenScalar> read;
    Load(*read, Saved(*written));
    ASSERT_EQ(read->NumKeys(), 3);
    const TarvoKey<float> expected[] = {{0, 10, 3}, {0, 20, 2}, {0, 30, 4}};
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(read->table.keys[i].time, expected[i].time);
        EXPECT_EQ(read->table.keys[i].value, expected[i].value);
    }
}

}  // namespace
