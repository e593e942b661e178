// How a whole table comes and goes: with a scene file, from another controller, to a clone.

#include "core_link/core_link.h"
#include "foundation/thrown.h"
#include "headless/copies.h"
#include "headless/memory_chunks.h"
#include "platform/testing.h"
#include "tests/controllers/control_world.h"
#include "tests/support/puppet_core.h"
#include "tests/support/test_class.h"

namespace {

using Words = std::vector<std::uint32_t>;

class KeyTransfer : public ControlTest {
  protected:
    KeyTransfer() { platform::SetTickCount(70); }
    ~KeyTransfer() override { platform::ClearTickCount(); }

    static std::vector<std::byte> Chunk(const Words& words, std::uint16_t id = 1) {
        return headless::SavedBytes([&](ISave* save) {
            save->BeginChunk(id);
            save->Write(words.data(), static_cast<std::uint32_t>(words.size() * 4), nullptr);
            return save->EndChunk();
        });
    }

    Alone<OpenScalar> scalar_;
    Alone<OpenTransform> transform_;
};

TEST_F(KeyTransfer, ATableIsOneChunkOfKnownWordsAndComesBackWhole) {
    scalar_->AddKey({1, -2, 1.0F});
    scalar_->AddKey({0, 258, -2.5F});
    scalar_->table.currentKey = {0, 5, 0.5F};
    EXPECT_EQ(headless::SavedBytes(*scalar_),
              Chunk({100, 12, 2, 1, 0xFFFFFFFE, 0x3F800000, 0, 258, 0xC0200000, 0, 5, 0x3F000000}));
    // Twelve floats row by row, and then the flags.
    TarvoKey<Matrix3>& current = transform_->table.currentKey;
    current = {0, 5, Matrix3({1, 2, 3}, {4, 5, 6}, {7, 8, 9}, {10, 11, 12})};
    current.value.flags = 0xA0B0C0D0;
    EXPECT_EQ(headless::SavedBytes(*transform_),
              Chunk({100, 60, 0, 0, 5, 0x3F800000, 0x40000000, 0x40400000, 0x40800000, 0x40A00000,
                     0x40C00000, 0x40E00000, 0x41000000, 0x41100000, 0x41200000, 0x41300000,
                     0x41400000, 0xA0B0C0D0}));
    current = {};
    for (std::uint32_t i = 0; i < 5; ++i)
        transform_->AddKey({i, static_cast<TimeValue>(i * 100), MovedBy(static_cast<float>(i))});
    Alone<OpenTransform> read;
    headless::LoadBytes(headless::SavedBytes(*transform_), *read);
    EXPECT_EQ(read->table.currentKey.time, 70) << "the millisecond counter, taken as ticks";
    EXPECT_FLOAT_EQ(read->table.currentKey.value.m[3][0], 0.7F);
    read->table.currentKey = current;
    EXPECT_EQ(headless::SavedBytes(*read), headless::SavedBytes(*transform_));
}

// Keys out of order are sorted, and of equal times the last stands. Gigabytes that are not there
// are not asked for. Without keys the cached value stands.
TEST_F(KeyTransfer, AStrangeChunkIsLeftAloneAndRecordsAreBelievedAsFarAsTheyAreThere) {
    const Words whole = {100, 12, 4, 0, 3, 0, 0, 1, 0, 0, 2, 0, 0, 1, 0x40400000, 0, 9, 0};
    const auto with = [&](std::size_t at, std::uint32_t word) {
        Words words = whole;
        words[at] = word;
        return Chunk(words);
    };
    for (const auto& strange : {with(0, 101), with(1, 60), with(2, 0xFFFFFFFF), Chunk(whole, 2),
                                Chunk({100, 12, 0, 0, 3, 0x41480000})}) {
        EXPECT_EQ(headless::LoadBytes(strange, *scalar_), IO_OK);
        EXPECT_TRUE(scalar_->NumKeys() == 0 && scalar_->table.currentKey.time == -1);
    }
    EXPECT_EQ(scalar_->table.currentKey.value, 12.5F);
    const Times kept[] = {{}, {3}, {1, 3}, {1, 2, 3}, {1, 2, 3}};
    for (std::size_t length = 3; length < whole.size(); ++length) {
        for (const std::uint32_t announced : {4U, 0x7FFFFFFFU}) {
            Words words(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
            words[2] = announced;
            Alone<OpenScalar> read;
            EXPECT_EQ(headless::LoadBytes(Chunk(words), *read), IO_OK);
            EXPECT_EQ(TimesOf(read->table), kept[length / 3 - 1]) << length;
            EXPECT_TRUE(length < 15 || read->table.keys[0].value == 3.0F);
        }
    }
}

// A host that fails to read gives nothing of what it could not give whole, or all that there was,
// or throws.
enum class Failure { kGivesNothing, kGivesRest, kThrows };

struct CutChunk final : ILoad {
    std::span<const std::uint32_t> words;
    Failure failure = Failure::kGivesNothing;

    IOResult OpenChunk() override { return IO_OK; }
    std::uint16_t CurChunkID() override { return 1; }
    IOResult CloseChunk() override { return IO_OK; }
    IOResult ReadCStringChunk(char**) override { return IO_ERROR; }
    IOResult Read(void* bytes, std::uint32_t count, std::uint32_t* read) override {
        const bool isWhole = count <= words.size_bytes();
        if (!isWhole && failure == Failure::kThrows) throw std::bad_alloc();
        if (!isWhole && failure == Failure::kGivesNothing) return IO_ERROR;
        *read = isWhole ? count : static_cast<std::uint32_t>(words.size_bytes());
        std::memcpy(bytes, words.data(), *read);
        words = words.subspan(*read / 4);
        return isWhole ? IO_OK : IO_ERROR;
    }
};

TEST_F(KeyTransfer, EveryWholeRecordOfACutChunkIsKeptHoweverTheHostFails) {
    constexpr int kThere = 900;
    Words words = {100, 12, 5000};
    for (std::uint32_t time = 0; time < kThere; ++time)
        words.insert(words.end(), {0, time, 0});
    words.push_back(0);
    for (const auto failure : {Failure::kGivesNothing, Failure::kGivesRest, Failure::kThrows}) {
        CutChunk chunk;
        chunk.words = words;
        chunk.failure = failure;
        Alone<OpenScalar> read;
        const bool hasThrown = TVL::ThrownBy([&] { LoadKeys(chunk, read->table); }).has_value();
        EXPECT_EQ(hasThrown, failure == Failure::kThrows);
        EXPECT_TRUE(hasThrown ? read->NumKeys() < kThere : read->NumKeys() == kThere);
        for (int index = 0; index < read->NumKeys(); ++index)
            EXPECT_EQ(read->GetKeyTime(index), index);
    }
}

// A source with a part that has keys, too.
struct Parted : OpenScalar {
    int NumSubs() override { return 2; }
    Animatable* SubAnim(int index) override { return index == 1 ? &*part : nullptr; }

    Alone<OpenScalar> part;
};

// The end of the range is sampled only if it falls on the step of 160; far too many frames are not.
// From itself, nothing, or a controller of other values nothing comes.
TEST_F(KeyTransfer, EveryFrameBetweenTheKeysOfTheSourceAndItsPartsIsSampled) {
    const Times cases[][3] = {// keys of the source, of its part, and what is sampled
                              {{100, 267}, {}, {100, 260}},
                              {{}, {-160, 160}, {-160, 0, 160}},
                              {{5}, {}, {5}},
                              {{0, 160}, {-160}, {-160, 0, 160}},
                              {{INT_MAX - 160, INT_MAX}, {}, {INT_MAX - 160, INT_MAX}},
                              {{INT_MIN, 5, INT_MAX}, {}, {INT_MIN, 5, INT_MAX}},
                              {{}, {}, {}}};
    for (const auto& [keys, partKeys, expected] : cases) {
        Alone<Parted> source;
        for (const TimeValue t : keys)
            source->AddKey({1, t, static_cast<float>(t)});
        for (const TimeValue t : partKeys)
            source->part->AddKey({1, t, 0});
        scalar_->AddKey({3, 9, 9.0F});
        for (Control* from : {static_cast<Control*>(&*source), static_cast<Control*>(&*scalar_),
                              static_cast<Control*>(&*transform_), static_cast<Control*>(nullptr)})
            scalar_->Copy(from);
        EXPECT_EQ(TimesOf(scalar_->table), expected);
        for (const TarvoKey<float>& key : scalar_->table.keys)
            EXPECT_TRUE(key.value == ValueAt(*source, key.time) && key.flags == 0);
        EXPECT_EQ(scalar_->table.currentKey.time, 70);
        EXPECT_EQ(scalar_->table.currentKey.value, scalar_->GetKeyAtTime(70).value);
    }
}

TEST_F(KeyTransfer, ACloneHasTheKeysAndTheCachedKeyButItsOwnPlaceOfSearch) {
    static TestClass scalars("scalar of a test", OpenScalar::kSuperClassID, OpenScalar::kClassID,
                             [] { return static_cast<Animatable*>(new OpenScalar); });
    host_.RegisterClass(&scalars);
    for (int i = 0; i < 4; ++i)
        scalar_->AddKey({1, i * 10, static_cast<float>(i)});
    ValueAt(*scalar_, 25);
    auto* const clone = static_cast<OpenScalar*>(headless::CopyOf(*scalar_));
    EXPECT_EQ(headless::SavedBytes(*clone), headless::SavedBytes(*scalar_));
    EXPECT_EQ(clone->table.lookupIndex, 0);
    clone->DeleteThis();
}

TEST_F(KeyTransfer, WhileTheCoreRunsATableIsFullButLooksEmpty) {
    scalar_->AddKey({0, 0, 1.0F});
    scalar_->AddKey({0, 100, 3.0F});
    Alone<OpenScalar> copy;
    PuppetCore core;
    core.isRunning = true;
    TheCoreLink().core = &core;
    TimeValue next = 0;
    EXPECT_TRUE(scalar_->NumKeys() == 0 && !scalar_->GetNextKeyTime(0, NEXTKEY_RIGHT, next));
    EXPECT_EQ(scalar_->GetKeyIndex(100), 1);
    EXPECT_EQ(ValueAt(*scalar_, 50), 2.0F);
    copy->Copy(&*scalar_);
    EXPECT_TRUE(copy->table.keys.empty());
    TheCoreLink().core = nullptr;
}

TEST_F(KeyTransfer, SelectionGoesByHitsOrIsClearedAsAWhole) {
    TrackHitTab hits;
    for (const std::uint32_t hit : {0u, 2u, 3u, 0xFFFFFFFFu}) {
        const TrackHitRecord record{hit, 0};
        hits.Append(1, &record);
    }
    for (const TimeValue t : {0, 10, 20})
        scalar_->AddKey({9, t, 0});
    std::string flags;
    const std::uint32_t acts[] = {SELKEYS_SELECT | SELKEYS_DESELECT, SELKEYS_DESELECT, 0,
                                  SELKEYS_CLEARKEYS | SELKEYS_SELECT};
    for (const std::uint32_t what : acts) {
        scalar_->SelectKeys(hits, what);
        for (const TarvoKey<float>& key : scalar_->table.keys)
            flags += std::to_string(key.flags);
    }
    EXPECT_EQ(flags, "191090090000");
    for (const int index : {-1, 3, INT_MIN, INT_MAX}) {
        EXPECT_EQ(scalar_->GetKeyTime(index), -1);
        scalar_->SelectKeyByIndex(index, 1);
        scalar_->DeleteKeyByIndex(index);
    }
    PartID part = PART_ALL;
    EXPECT_EQ(scalar_->NotifyRefChanged(FOREVER, nullptr, part, 354), REF_STOP);
    EXPECT_EQ(scalar_->NotifyRefChanged(FOREVER, nullptr, part, REFMSG_CHANGE), REF_SUCCEED);
}

}  // namespace
