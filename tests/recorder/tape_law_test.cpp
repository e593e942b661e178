#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <utility>

#include "recorder/tape/read_tape.h"
#include "recorder/tape/segments.h"
#include "recorder/tape/tape_writer.h"
#include "tests/recorder/random_records.h"
#include "tests/support/folder/temporary_folder.h"

using namespace recorder;

namespace {

using Rows = std::vector<std::string>;

std::string BytesOf(const Record& record) {
    std::string bytes(record.head.size, '\0');
    std::memcpy(bytes.data(), &record.head, sizeof record.head);
    if (!record.values.empty())
        std::memcpy(&bytes[sizeof record.head], record.values.data(), record.values.size_bytes());
    return bytes;
}

// All records of a tape that were made live.
Rows RowsOf(const TapeContents& tape) {
    Rows rows;
    for (const TapeSession& session : tape.sessions)
        for (const Record& record : session.records)
            if (!IsToldAgain(record.head)) rows.push_back(BytesOf(record));
    return rows;
}

std::vector<std::uint8_t> BytesOf(const std::string& path) {
    const std::string bytes = ReadFile(path);
    return {bytes.begin(), bytes.end()};
}

std::unique_ptr<TapeWriter> OpenTape(const std::string& path) {
    std::string whyNot;
    auto tape = TapeWriter::Open({.path = path, .limit = kLeastTapeLimit}, whyNot);
    EXPECT_NE(tape, nullptr) << whyNot;
    return tape;
}

bool IsTailOf(const Rows& tail, const Rows& whole) {
    return tail.size() <= whole.size() && std::equal(tail.rbegin(), tail.rend(), whole.rbegin());
}

TEST(TapeLaw, IsReadAsItWasWritten_OrItsTailUnderALimit) {
    for (unsigned seed = 1; seed <= 6; ++seed) {
        SCOPED_TRACE(seed);
        const TemporaryFolder folder;
        const std::string path = folder.File("law.tape");
        RandomRecords records(seed);
        Kept kept;
        const unsigned sessions = seed <= 3 ? 2 : 9;
        for (unsigned session = 0; session < sessions; ++session) {
            const auto tape = OpenTape(path);
            Both both(*tape, kept);
            records.Session(both);
            records.Some(both, seed <= 3 ? 6'000 : 22'000);
            records.Large(both, 2'500'000 * (seed % 2) + 3 * seed);
            records.Some(both, 2000);
            EXPECT_EQ(tape->WhyStopped(), "");
        }
        std::uint64_t percent = 0;
        const auto rises = [&](std::uint64_t done, std::uint64_t whole) {
            const std::uint64_t before = std::exchange(percent, 100 * done / whole);
            return before <= percent && percent <= 100;
        };
        const TapeContents read = ReadTape(path, MayBeBlank::kNo, rises);
        EXPECT_GT(percent, 80U);
        for (const std::uint64_t end : {0U, 50U, 80U})
            EXPECT_ANY_THROW(ReadTape(path, MayBeBlank::kNo, [&](auto... done) {
                rises(done...);
                return percent < end;
            })) << end;
        EXPECT_EQ(read.damages, std::vector<std::string>());
        EXPECT_LE(read.bytes, kLeastTapeLimit);
        const Rows rows = RowsOf(read);
        EXPECT_TRUE(IsTailOf(rows, kept.records)) << rows.size() << " of " << kept.records.size();
        EXPECT_GT(rows.size(), sessions == 2 ? kept.records.size() - 1 : 40'000);
        EXPECT_EQ(read.sessions.front().isWhole, sessions == 2);
        EXPECT_TRUE(read.sessions.back().isWhole);
    }
}

TEST(TapeLaw, WhateverIsCutOffOrNeverWritten_WhatWasWholeBeforeIsRead) {
    const TemporaryFolder folder;
    const std::string path = folder.File("cut.tape");
    RandomRecords records(7);
    Kept kept;
    {
        const auto tape = OpenTape(path);
        Both both(*tape, kept);
        records.Session(both);
        records.Some(both, 60);
    }
    const std::vector<std::uint8_t> whole = BytesOf(path);
    std::size_t end = sizeof(SegmentHead) + kept.records.front().size();
    std::size_t count = 1;
    for (std::size_t place = end; place <= whole.size(); ++place) {
        if (count < kept.records.size() && place == end + kept.records[count].size())
            end += kept.records[count++].size();
        std::vector<std::uint8_t> cut(whole.begin(), whole.begin() + static_cast<long>(place));
        for (const std::size_t zeros : {std::size_t{0}, whole.size() - place}) {
            cut.resize(place + zeros);
            const TapeContents read = ReadTape("cut", cut);
            const Rows rows = RowsOf(read);
            // The last bytes of a record can be zeros.
            ASSERT_TRUE(rows.size() == count || rows.size() == count + 1) << place;
            ASSERT_TRUE(std::equal(rows.begin(), rows.end(), kept.records.begin()))
                << place << " zeros " << zeros << " rows " << rows.size() << " count " << count;
            ASSERT_TRUE(read.damages.empty()) << place << ' ' << read.damages.front();
        }
    }
    EXPECT_EQ(count, kept.records.size());

    // Nor is what lay there before a part of another segment.
    SegmentHead head;
    std::memcpy(&head, whole.data(), sizeof head);
    head.number = 2;
    head = Sealed(head);
    std::vector<std::uint8_t> other = whole;
    std::memcpy(other.data(), &head, sizeof head);
    EXPECT_ANY_THROW(ReadTape("other", other));
}

TEST(TapeLaw, DamageCostsTheRecordThatItHits_OrTheSegmentWhoseHeadItHits) {
    const TemporaryFolder folder;
    const std::string path = folder.File("damage.tape");
    RandomRecords records(8);
    Kept kept;
    {
        const auto tape = OpenTape(path);
        Both both(*tape, kept);
        records.Session(both);
        records.Some(both, 45'000);
    }
    const std::vector<std::uint8_t> whole = BytesOf(path);
    ASSERT_GT(whole.size(), 5 * kNewSegment);
    // The first segments lie behind the places where they were written.
    constexpr std::size_t kFirst = kDesks * kNewSegment;
    std::vector<std::uint8_t> damaged = whole;
    std::size_t at = kFirst + sizeof(SegmentHead);
    for (std::size_t i = 0; i < 100; ++i)
        at += kept.records[i].size();
    damaged[at + kept.records[100].size() - 1] ^= 1;
    TapeContents read = ReadTape("one", damaged);
    Rows expected = kept.records;
    expected.erase(expected.begin() + 100);
    EXPECT_EQ(RowsOf(read), expected);
    EXPECT_EQ(read.damages, std::vector{"at byte " + std::to_string(at) + ": a record is damaged"});
    EXPECT_FALSE(read.sessions.front().isWhole);

    const auto damageCostsWhatLiesBetween = [&](std::size_t from, std::size_t count) {
        damaged = whole;
        std::fill_n(damaged.begin() + static_cast<long>(from), count, std::uint8_t{0});
        read = ReadTape("gap", damaged);
        EXPECT_EQ(read.damages.size(), 1U);
        EXPECT_EQ(read.sessions.size(), 1U);
        const Rows rows = RowsOf(read);
        EXPECT_LT(rows.size(), kept.records.size());
        EXPECT_EQ(rows.front(), kept.records.front());
        EXPECT_EQ(rows.back(), kept.records.back());
    };
    damageCostsWhatLiesBetween(kFirst + kNewSegment + 20, 8);
    damageCostsWhatLiesBetween(kFirst + kNewSegment / 2, kNewSegment / 2);
}

TEST(TapeLaw, WhatASceneHoldsGoesBeforeWorkThatWasNeverSaved) {
    const TemporaryFolder folder;
    const std::string path = folder.File("saved.tape");
    RandomRecords records(9);
    Kept unsaved;
    {
        const auto tape = OpenTape(path);
        Both both(*tape, unsaved);
        records.Session(*tape);
        records.Save(*tape);
        records.Some(both, 20'000);
    }
    for (int session = 0; session < 2; ++session) {
        const auto tape = OpenTape(path);
        records.Session(*tape);
        for (int save = 0; save < 10; ++save) {
            records.Some(*tape, 9'000);
            records.Save(*tape);
        }
    }
    const TapeContents read = ReadTape(path);
    EXPECT_LE(read.bytes, kLeastTapeLimit);
    const std::vector<Record>& left = read.sessions.front().records;
    ASSERT_GE(left.size(), unsaved.records.size());
    EXPECT_EQ(BytesOf(left[left.size() - unsaved.records.size()]), unsaved.records.front());
    EXPECT_EQ(BytesOf(left.back()), unsaved.records.back());
    EXPECT_EQ(read.damages, std::vector<std::string>());
}

TEST(TapeLaw, WhatTheLimitLeftCanBeReadWithoutWhatItTook) {
    const TemporaryFolder folder;
    const std::string path = folder.File("again.tape");
    constexpr ObjectId kHand = MakeObjectId(ObjectKind::kNode, 5);
    TVL::CMesh mesh;
    mesh.vertices.resize(30);
    MeshId id = 0;
    {
        const auto tape = OpenTape(path);
        tape->onNewSegment = [](const TapeWriter::TellObject& tell) {
            tell(kHand, {.name = "Hand"});
        };
        Stream stream;
        stream.Add(*tape);
        stream.BeginSession({.moment = "2026-11-26 04:05:00", .core = "Core"});
        for (int i = 0; i < 60'000; ++i) {
            id = stream.Know(mesh);
            const auto call = stream.Call(Operation::CSnapshot_Mesh_SetMesh, kHand, id);
            stream.Note("word", std::string(100, 'x'));
            stream.Answer(call, Operation::CSnapshot_Mesh_SetMesh, kHand);
        }
    }
    const TapeContents read = ReadTape(path);
    ASSERT_EQ(read.sessions.size(), 1U);
    const TapeSession& session = read.sessions.front();
    EXPECT_FALSE(session.isWhole);
    EXPECT_EQ(session.records[0].head.kind, RecordKind::kSession);
    EXPECT_EQ(ValueReader(session.records[0]).Text(), "2026-11-26 04:05:00");
    const auto facts = std::ranges::find(session.records, kHand, [](const Record& record) {
        return record.head.kind == RecordKind::kObject ? record.head.object : 0;
    });
    ASSERT_NE(facts, session.records.end());
    EXPECT_EQ(ValueReader(*facts).Facts().name, "Hand");
    EXPECT_TRUE(session.meshes.contains(id));
}

}  // namespace
