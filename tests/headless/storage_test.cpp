#include <gtest/gtest.h>

#include <string>
#include <vector>

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

}  // namespace
