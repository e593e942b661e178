#include <array>
#include <cstring>
#include <string>
#include <vector>

#include "headless/host_world.h"
#include "headless/memory_chunks.h"

namespace {

using Bytes = std::vector<std::byte>;

std::string Text(ILoad* load) {
    char* text = nullptr;
    return load->ReadCStringChunk(&text) == IO_OK ? text : "failed";
}

// A chunk 1 with a text and a number, and in a chunk 2 a chunk 3 and an empty chunk 4.
Bytes Sample() {
    return headless::SavedBytes([](ISave* save) {
        save->BeginChunk(1);
        save->WriteCString("first");
        const std::uint32_t number = 0x01020304;
        save->Write(&number, sizeof number, nullptr);
        save->EndChunk();
        save->BeginChunk(2);
        save->BeginChunk(3);
        save->WriteCString(nullptr);
        save->EndChunk();
        save->BeginChunk(4);
        save->EndChunk();
        return save->EndChunk();
    });
}

TEST(Storage, ChunksNestAndSkipWhatWasNotRead) {
    headless::LoadBytes(Sample(), [](ILoad* load) {
        EXPECT_EQ(load->CurChunkID(), 0);
        EXPECT_EQ(load->OpenChunk(), IO_OK);
        EXPECT_EQ(load->CurChunkID(), 1);
        EXPECT_EQ(Text(load), "first");
        EXPECT_EQ(load->CloseChunk(), IO_OK);
        EXPECT_EQ(load->OpenChunk(), IO_OK);
        EXPECT_EQ(load->OpenChunk(), IO_OK);
        EXPECT_EQ(load->CurChunkID(), 3);
        EXPECT_EQ(Text(load), "");
        load->CloseChunk();
        EXPECT_EQ(load->OpenChunk(), IO_OK);
        EXPECT_EQ(load->CurChunkID(), 4);
        EXPECT_EQ(Text(load), "failed");
        EXPECT_EQ(load->OpenChunk(), IO_END);
        load->CloseChunk();
        EXPECT_EQ(load->OpenChunk(), IO_END);
        EXPECT_EQ(load->CurChunkID(), 2);
        load->CloseChunk();
        EXPECT_EQ(load->OpenChunk(), IO_END);
        EXPECT_EQ(load->CloseChunk(), IO_ERROR);
        return IO_OK;
    });
}

TEST(Storage, TheBytesOfAChunkAreItsIdItsLengthAndItsContents) {
    const Bytes bytes = Sample();
    const std::array<unsigned, 20> first{1,   0,   10,  0,   0,   0, 0, 0, 0, 0,
                                         'f', 'i', 'r', 's', 't', 0, 4, 3, 2, 1};
    ASSERT_GE(bytes.size(), first.size());
    for (std::size_t i = 0; i < first.size(); ++i)
        EXPECT_EQ(std::to_integer<unsigned>(bytes[i]), first[i]) << i;
}

TEST(Storage, ReadingBeyondAChunkReadsWhatThereIsAndFails) {
    headless::LoadBytes(Sample(), [](ILoad* load) {
        load->OpenChunk();
        std::array<char, 100> block{};
        std::uint32_t count = 0;
        EXPECT_EQ(load->Read(block.data(), 100, &count), IO_ERROR);
        EXPECT_EQ(count, 10U);
        EXPECT_STREQ(block.data(), "first");
        EXPECT_EQ(load->Read(block.data(), 1, &count), IO_ERROR);
        EXPECT_EQ(count, 0U);
        return IO_OK;
    });
}

TEST(Storage, AStringEndsAtItsNulOrWithItsChunk) {
    const std::string text(10'000, 'x');
    const Bytes bytes = headless::SavedBytes([&](ISave* save) {
        save->BeginChunk(1);
        save->WriteCString(text.c_str());
        save->Write(text.data(), 5, nullptr);
        return save->EndChunk();
    });
    headless::LoadBytes(bytes, [&](ILoad* load) {
        load->OpenChunk();
        EXPECT_EQ(Text(load), text);
        EXPECT_EQ(Text(load), "xxxxx");
        return IO_OK;
    });
}

TEST(Storage, WhatASaveLeavesOpenIsClosedBehindItAndAnEndTooManyFails) {
    const Bytes bytes = headless::SavedBytes([](ISave* save) {
        EXPECT_EQ(save->EndChunk(), IO_ERROR);
        save->BeginChunk(1);
        save->BeginChunk(2);
        return save->WriteCString("deep");
    });
    headless::LoadBytes(bytes, [](ILoad* load) {
        EXPECT_EQ(load->OpenChunk(), IO_OK);
        EXPECT_EQ(load->OpenChunk(), IO_OK);
        EXPECT_EQ(Text(load), "deep");
        return IO_OK;
    });
}

// Walks through everything; the sum makes sure that it is read.
std::size_t WalkAll(ILoad* load) {
    std::size_t chunks = 0;
    int depth = 0;
    while (depth >= 0) {
        if (load->OpenChunk() == IO_OK) {
            ++chunks;
            ++depth;
        } else {
            load->CloseChunk();
            --depth;
        }
    }
    return chunks;
}

TEST(Storage, ALengthIsBelievedOnlyAsFarAsItsLevelReaches) {
    const Bytes whole = Sample();
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
        headless::LoadBytes(cut, [&](ILoad* load) {
            EXPECT_LE(WalkAll(load), 1U) << length;
            return IO_OK;
        });
    }
    for (std::size_t place = 0; place < whole.size(); ++place) {
        Bytes damaged = whole;
        damaged[place] = std::byte{0xFF};
        headless::LoadBytes(damaged, [&](ILoad* load) {
            EXPECT_LE(WalkAll(load), 8U) << place;
            return IO_OK;
        });
    }
}

class StoredTrackTest : public HostWorld {
  protected:
    struct Key {
        TimeValue time;
        std::uint32_t selected;
        float value;
    };

    static Bytes Track(std::uint32_t version, std::uint32_t announced,
                       const std::vector<Key>& keys) {
        return headless::SavedBytes([&](ISave* save) {
            save->BeginChunk(1);
            const std::uint32_t header[] = {version, sizeof(Key), announced};
            save->Write(header, sizeof header, nullptr);
            const float rest = 9;
            save->Write(&rest, sizeof rest, nullptr);
            save->Write(keys.data(), static_cast<std::uint32_t>(keys.size() * sizeof(Key)),
                        nullptr);
            return save->EndChunk();
        });
    }

    StoredTrackTest()
        : control(static_cast<Control*>(
              host.CreateInstance(CTRL_FLOAT_CLASS_ID, kLinearFloatClassId))) {}
    ~StoredTrackTest() override { control->DeleteThis(); }

    float Get(TimeValue t) {
        float value = 0;
        Interval valid = FOREVER;
        control->GetValue(t, &value, valid, CTRL_ABSOLUTE);
        return value;
    }

    Control* control;
};

TEST_F(StoredTrackTest, KeysOutOfOrderAreSortedAndOfEqualTimesTheLastStands) {
    const Bytes bytes = Track(1, 4, {{20, 0, 2}, {10, 0, 1}, {20, 1, 3}, {0, 0, 0}});
    EXPECT_EQ(headless::LoadBytes(bytes, *control), IO_OK);
    ASSERT_EQ(control->NumKeys(), 3);
    EXPECT_EQ(control->GetKeyTime(1), 10);
    EXPECT_EQ(Get(20), 3.0f);
    EXPECT_EQ(Get(-1), 9.0f);
}

TEST_F(StoredTrackTest, AnAnnouncedNumberOfKeysIsBelievedOnlyAsFarAsTheyAreThere) {
    Bytes bytes = Track(1, 0xFFFFFFFF, {{0, 0, 5}, {10, 0, 6}});
    EXPECT_EQ(headless::LoadBytes(bytes, *control), IO_ERROR);
    EXPECT_EQ(control->NumKeys(), 2);
    EXPECT_EQ(Get(10), 6.0f);
}

TEST_F(StoredTrackTest, AnotherVersionLeavesTheControllerAsItIs) {
    float seven = 7;
    control->SetValue(0, &seven, 1, CTRL_ABSOLUTE);
    EXPECT_EQ(headless::LoadBytes(Track(2, 1, {{0, 0, 5}}), *control), IO_ERROR);
    EXPECT_EQ(control->NumKeys(), 0);
    EXPECT_EQ(Get(0), 7.0f);
    EXPECT_EQ(headless::LoadBytes({}, *control), IO_OK);
}

}  // namespace
