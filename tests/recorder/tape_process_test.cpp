#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <new>
#include <utility>

#include "recorder/tape/read_tape.h"
#include "recorder/tape/tape_writer.h"
#include "tests/recorder/random_records.h"
#include "tests/support/folder/temporary_folder.h"

using namespace recorder;

namespace {

std::size_t CountOf(const std::string& path) {
    std::size_t count = 0;
    for (const TapeSession& session : ReadTape(path).sessions)
        count += session.records.size();
    return count;
}

// Takes records until it is killed, and tells in shared memory how many are on the tape.
[[noreturn]] void RecordForever(const std::string& path, std::atomic<int>& taken) {
    std::string whyNot;
    const auto tape = TapeWriter::Open({.path = path}, whyNot);
    if (!tape) std::_Exit(3);
    RandomRecords records(1);
    records.Session(*tape);
    for (taken = 1;; ++taken)
        records.Some(*tape, 1);
}

TEST(TapeOfAProcess, IsWholeWheneverThatIsKilled_AndIsGoneOnWith) {
    void* const shared = mmap(nullptr, sizeof(std::atomic<int>), PROT_READ | PROT_WRITE,
                              MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(shared, MAP_FAILED);
    auto& taken = *new (shared) std::atomic<int>(0);
    const TemporaryFolder folder;
    const std::string path = folder.File("killed.tape");
    std::size_t least = 0;
    for (int death = 0; death < 12; ++death) {
        taken = 0;
        const pid_t child = fork();
        if (child == 0) RecordForever(path, taken);
        while (taken < 1 + death * 700)
            usleep(100);
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        least += static_cast<std::size_t>(taken);
        const TapeContents read = ReadTape(path);
        EXPECT_EQ(read.sessions.size(), static_cast<std::size_t>(death + 1));
        EXPECT_EQ(read.damages, std::vector<std::string>());
        const std::size_t count = CountOf(path);
        EXPECT_GE(count, least);
        EXPECT_LE(count, least + 1);
        least = count;
    }
    munmap(shared, sizeof taken);
}

TEST(TapeOfAProcess, IsNobodyElsesAtTheSameTime_AndNoOtherFileIsTakenForOne) {
    const TemporaryFolder folder;
    const std::string path = folder.File("mine.tape");
    std::string whyNot;
    const auto mine = TapeWriter::Open({.path = path}, whyNot);
    ASSERT_NE(mine, nullptr);
    EXPECT_EQ(TapeWriter::Open({.path = path}, whyNot), nullptr);
    EXPECT_EQ(whyNot, path + ": somebody is recording to it");
    const std::string letter = folder.Write("letter.txt", "Dear Core, ");
    for (const std::string& other :
         {letter, folder.Path().string(), folder.File("no/where"), std::string("/dev/null")}) {
        whyNot.clear();
        EXPECT_EQ(TapeWriter::Open({.path = other}, whyNot), nullptr) << other;
        EXPECT_TRUE(whyNot.starts_with(other + ": ")) << whyNot;
        EXPECT_ANY_THROW(ReadTape(other)) << other;
    }
    EXPECT_EQ(ReadFile(letter), "Dear Core, ");
}

// One that leaves by its return from `main`, as a library in a host can have it.
TEST(TapeOfAProcess, IsNotTouchedByAChildThatIsDoubledOff) {
    const TemporaryFolder folder;
    const std::string path = folder.File("parent.tape");
    std::string whyNot;
    auto tape = TapeWriter::Open({.path = path}, whyNot);
    ASSERT_NE(tape, nullptr) << whyNot;
    RandomRecords records(3);
    records.Session(*tape);
    records.Some(*tape, 100);
    const pid_t child = fork();
    if (child == 0) {
        records.Some(*tape, 100);
        tape.reset();
        std::_Exit(0);
    }
    waitpid(child, nullptr, 0);
    records.Some(*tape, 5'000);
    EXPECT_EQ(CountOf(path), 5'101U);
    tape.reset();
    EXPECT_EQ(CountOf(path), 5'101U);
}

// Such as is left where a process dies as soon as it has set room aside.
TEST(TapeOfAProcess, ThatHoldsNothingYetIsSaidToBeOneAndGoneOnWith) {
    const TemporaryFolder folder;
    const std::string path = folder.Write("blank.tape", std::string(524'288, '\0'));
    EXPECT_ANY_THROW(ReadTape(path));
    EXPECT_TRUE(ReadTape(path, MayBeBlank::kYes).sessions.empty());
    std::string whyNot;
    const auto tape = TapeWriter::Open({.path = path}, whyNot);
    ASSERT_NE(tape, nullptr) << whyNot;
    RandomRecords(4).Session(*tape);
    EXPECT_EQ(CountOf(path), 1U);
}

TEST(TapeOfAProcess, EndsWithOneLineWhereThereIsNoRoom_AndStaysReadable) {
    const TemporaryFolder folder;
    const std::string path = folder.File("full.tape");
    rlimit usual{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &usual), 0);
    rlimit small = usual;
    small.rlim_cur = 2'500'000;
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    std::string whyNot;
    auto tape = TapeWriter::Open({.path = path}, whyNot);
    ASSERT_NE(tape, nullptr) << whyNot;
    RandomRecords records(2);
    Kept kept;
    Both both(*tape, kept);
    records.Session(both);
    std::size_t whole = 0;
    while (kept.records.size() < 40'000) {
        records.Some(both, 1);
        if (tape->WhyStopped().empty()) whole = kept.records.size();
    }
    setrlimit(RLIMIT_FSIZE, &usual);
    EXPECT_EQ(tape->WhyStopped(), path + ": the tape ends here: File too large");
    tape.reset();
    setrlimit(RLIMIT_FSIZE, &small);
    EXPECT_EQ(TapeWriter::Open({.path = path}, whyNot), nullptr);
    EXPECT_EQ(std::exchange(whyNot, {}), path + ": File too large");
    setrlimit(RLIMIT_FSIZE, &usual);
    // The record after which the tape found out can be on it.
    EXPECT_TRUE(CountOf(path) == whole || CountOf(path) == whole + 1);
    whole = CountOf(path);
    EXPECT_TRUE(ReadTape(path).damages.empty());

    // There is room again.
    tape = TapeWriter::Open({.path = path}, whyNot);
    records.Session(*tape);
    records.Some(*tape, 20'000);
    EXPECT_EQ(CountOf(path), whole + 20'001);
    std::filesystem::remove(path);
    records.Some(*tape, 20'000);
    EXPECT_EQ(tape->WhyStopped(), path + ": the tape ends here: the file was taken away");
}

}  // namespace
