#include <gtest/gtest.h>

#include <stdexcept>

#include "host/hold.h"
#include "tests/support/trace.h"
#include "tests/support/world.h"
#include "tvl/error_code.h"
#include "undo/own_step.h"

namespace {

using Names = std::vector<std::string>;

// Notes what becomes of it: "undo", "cancel", "redo", "end".
class Chunk final : public TVL::CUndo {
  public:
    explicit Chunk(Names& heard) : heard_(heard) {}
    ~Chunk() override { heard_.push_back("end"); }
    void Undo(bool isUndo) override { heard_.push_back(isUndo ? "undo" : "cancel"); }
    void Redo() override { heard_.push_back("redo"); }

  private:
    Names& heard_;
};

class UndoGroupsTest : public testing::Test {
  public:
    Names heard;  // outlives the chunks that the host keeps
    World world;
    headless::Session& host = world.Session();
    TVL::AdaptorInterface& adaptor = world.Adaptor();

    std::int32_t Add() { return adaptor.AddUndoChunk(new Chunk(heard)); }
    Names TakeHeard() { return std::exchange(heard, {}); }

    // Nothing takes the chunk, which is no failure while a group is open.
    void ExpectEndsAtOnce(const std::string& code) {
        const std::int32_t status = Add();
        EXPECT_EQ(TVL::ErrorCode::GetInstance()->GetByValue(status)->GetIdentifier(), code);
        EXPECT_EQ(TakeHeard(), Names{"end"});
    }
    // A hold of somebody else's takes a chunk, and outlives `groups` that are still open.
    void ExpectGuestsIn(int groups, bool isCancelled) {
        theHold.Begin();
        EXPECT_EQ(Add(), 0);
        for (int open = groups; open > 0; --open)
            EXPECT_EQ(isCancelled ? adaptor.CancelUndoGroup() : adaptor.EndUndoGroup(), 0);
        EXPECT_NE(isCancelled ? adaptor.CancelUndoGroup() : adaptor.EndUndoGroup(), 0);
        ASSERT_TRUE(theHold.Holding());
        EXPECT_TRUE(TakeHeard().empty());
        theHold.Accept("other");
        EXPECT_EQ(host.UndoLabels().front(), "other");
    }
};

TEST_F(UndoGroupsTest, ANestBecomesOneStepUnderTheNameOfItsOutermostGroup) {
    for (const char* name : {"a", "b", "c"})
        EXPECT_EQ(adaptor.BeginUndoGroup(name), 0);
    EXPECT_TRUE(theHold.Holding() && adaptor.IsHoldingUndo());
    EXPECT_EQ(Add(), 0);
    EXPECT_EQ(adaptor.AddUndoChunk(nullptr), 0) << "a step that does nothing";
    adaptor.EndUndoGroup();
    adaptor.EndUndoGroup();
    EXPECT_TRUE(theHold.Holding());
    EXPECT_EQ(adaptor.EndUndoGroup(), 0);
    EXPECT_FALSE(theHold.Holding());
    EXPECT_EQ(host.UndoLabels(), Names{"a"});

    adaptor.PerformUndo();
    host.Redo();
    adaptor.FlushUndoBuffer();
    EXPECT_EQ(TakeHeard(), (Names{"undo", "redo", "end"}));
}

TEST_F(UndoGroupsTest, ACancelAnywhereTakesTheWholeNestBackAndNothingAfterIt) {
    adaptor.BeginUndoGroup("outer");
    adaptor.BeginUndoGroup("inner");
    Add();
    adaptor.CancelUndoGroup();
    EXPECT_TRUE(theHold.Holding());
    adaptor.EndUndoGroup();
    EXPECT_EQ(TakeHeard(), (Names{"cancel", "end"}));

    // Nor does that of a guest in another hold linger.
    theHold.Begin();
    adaptor.BeginUndoGroup("guest");
    adaptor.CancelUndoGroup();
    theHold.Cancel();
    adaptor.BeginUndoGroup("next");
    Add();
    adaptor.EndUndoGroup();
    EXPECT_EQ(host.UndoLabels(), Names{"next"});
}

TEST_F(UndoGroupsTest, WhatNoGroupTakesAndWhatIsNotOpenIsReportedAndChangesNothing) {
    ExpectEndsAtOnce("UNDO_NOTHOLDING");
    adaptor.AddUndoChunk(nullptr);
    theHold.Begin();
    ExpectEndsAtOnce("UNDO_NOTHOLDING");
    EXPECT_TRUE(adaptor.EndUndoGroup() != 0 && adaptor.CancelUndoGroup() != 0);
    EXPECT_TRUE(theHold.Holding());
    theHold.Cancel();
    EXPECT_EQ(TimesTraced("(ERROR): Error: undo group mismatch. Attempt to end a non-existing undo "
                          "group detected\n"),
              2U);
    EXPECT_EQ(TimesTraced("new_identifier: UNDO_STARTENDMISMATCH\n"), 1U);
    EXPECT_EQ(TimesTraced("Return value: Mismatch on undo start and end group\n"), 2U);
}

TEST_F(UndoGroupsTest, AChunkAddedWhileTheHostUndoesIsRefused) {
    struct Adding final : TVL::CUndo {
        explicit Adding(UndoGroupsTest& inTest) : test(inTest) {}
        void Undo(bool) override {
            test.adaptor.BeginUndoGroup("inside");
            EXPECT_FALSE(test.adaptor.IsHoldingUndo());
            test.ExpectEndsAtOnce("UNDO_NOTHOLDING");
            if (isClosing) test.adaptor.EndUndoGroup();
        }
        void Redo() override { Undo(true); }

        UndoGroupsTest& test;
        bool isClosing = true;
    };
    auto* const chunk = new Adding(*this);
    adaptor.BeginUndoGroup("step");
    adaptor.AddUndoChunk(chunk);
    adaptor.EndUndoGroup();
    EXPECT_TRUE(host.Undo());

    // A group that stays open has no hold to the end.
    chunk->isClosing = false;
    EXPECT_TRUE(host.Redo());
    EXPECT_TRUE(!theHold.Holding() && adaptor.IsHoldingUndo());
    ExpectEndsAtOnce("SUCCESS");
    ExpectGuestsIn(1, false);
}

// The groups' hold ends by other hands: their own ends touch no other hold from then on.
TEST_F(UndoGroupsTest, OwnershipGoesWithTheHold) {
    const std::string file = (world.Folder() / "a.scene").string();
    ASSERT_EQ(host.SaveScene(file).error, "");
    const std::pair<bool, std::function<void()>> ends[] = {
        {false, [&] { host.NewScene(); }},
        {false, [&] { host.Reset(); }},
        {false, [&] { EXPECT_EQ(host.OpenScene(file).error, ""); }},
        {true, [] { theHold.Accept("host"); }},
        {true, [] { theHold.Cancel(); }}};
    for (const auto& [isToldByRecordsAlone, end] : ends) {
        for (const bool hasChunk : {isToldByRecordsAlone, true}) {
            for (const bool isCancelled : {false, true}) {
                adaptor.BeginUndoGroup("outer");
                adaptor.BeginUndoGroup("inner");
                if (hasChunk) Add();
                end();
                EXPECT_FALSE(theHold.Holding());
                TakeHeard();
                ExpectEndsAtOnce("SUCCESS");
                ExpectGuestsIn(2, isCancelled);
            }
        }
    }
}

TEST_F(UndoGroupsTest, ARecordThatThrowsWhenAStepOfOurOwnEndsIsTraced) {
    struct Failing final : RestoreObj {
        void Restore(int) override {}
        void Redo() override {}
        void EndHold() override { throw std::runtime_error("no mood"); }
    };
    {
        const OwnStep step("own");
        theHold.Put(new Failing);
    }
    EXPECT_EQ(host.UndoLabels(), Names{"own"});
    EXPECT_EQ(TimesTraced("Exception out of own: no mood\n"), 1U);
}

TEST_F(UndoGroupsTest, AnUnusualNestWarnsAndWorks) {
    for (int depth = 0; depth < 103; ++depth)
        adaptor.BeginUndoGroup(depth < 97 ? std::to_string(depth) : "same");
    EXPECT_EQ(TimesTraced("(CRITICAL): DEBUG WARNING: Detected unusual high undo level.\n"), 2U);
    EXPECT_EQ(TimesTraced("(WARNING): DEBUG WARNING: Detected duplicated undo groups. Possible "
                          "undo group mismatch\n"),
              2U);
    for (int depth = 0; depth < 103; ++depth)
        EXPECT_EQ(adaptor.EndUndoGroup(), 0);
}

TEST_F(UndoGroupsTest, UndoingARecordingFlipsTheHostsTimeAndACancelPutsItBack) {
    for (const bool isCancelled : {false, true}) {
        adaptor.SetCurrentTime(1);
        adaptor.BeginUndoGroup("record");
        adaptor.BeginRecordingUnkeyed({});
        adaptor.EndRecording();
        adaptor.SetCurrentTime(2);
        isCancelled ? adaptor.CancelUndoGroup() : adaptor.EndUndoGroup();
        EXPECT_EQ(adaptor.GetCurrentTime(), isCancelled ? 1 : 2);
        if (isCancelled) break;
        EXPECT_TRUE(host.Undo());
        EXPECT_EQ(adaptor.GetCurrentTime(), 1);
        EXPECT_TRUE(host.Redo());
        EXPECT_EQ(adaptor.GetCurrentTime(), 2);
    }
}

}  // namespace
