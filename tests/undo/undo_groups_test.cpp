#include <gtest/gtest.h>

#include <stdexcept>

#include "host/hold.h"
#include "host/interface.h"
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
    TVL::AdaptorInterface& adaptor = world.Adaptor();

    std::int32_t Add() { return adaptor.AddUndoChunk(new Chunk(heard)); }
    Names TakeHeard() { return std::exchange(heard, {}); }

    static std::string CodeOf(std::int32_t status) {
        return TVL::ErrorCode::GetInstance()->GetByValue(status)->GetIdentifier();
    }
};

TEST_F(UndoGroupsTest, ANestBecomesOneStepUnderTheNameOfItsOutermostGroup) {
    for (const char* name : {"a", "b", "c"})
        EXPECT_EQ(adaptor.BeginUndoGroup(name), 0);
    EXPECT_TRUE(theHold.Holding());
    EXPECT_TRUE(adaptor.IsHoldingUndo());
    EXPECT_EQ(Add(), 0);
    adaptor.EndUndoGroup();
    adaptor.EndUndoGroup();
    EXPECT_TRUE(theHold.Holding());
    EXPECT_EQ(adaptor.EndUndoGroup(), 0);
    EXPECT_FALSE(theHold.Holding());
    EXPECT_EQ(world.Session().UndoLabels(), (Names{"a"}));

    adaptor.PerformUndo();
    world.Session().Redo();
    EXPECT_EQ(TakeHeard(), (Names{"undo", "redo"}));
    adaptor.FlushUndoBuffer();
    EXPECT_EQ(TakeHeard(), (Names{"end"}));
}

TEST_F(UndoGroupsTest, ACancelAnywhereTakesTheWholeNestBackAndNothingAfterIt) {
    adaptor.BeginUndoGroup("outer");
    adaptor.BeginUndoGroup("inner");
    Add();
    adaptor.CancelUndoGroup();
    EXPECT_TRUE(theHold.Holding());
    adaptor.EndUndoGroup();
    EXPECT_EQ(TakeHeard(), (Names{"cancel", "end"}));
    EXPECT_TRUE(world.Session().UndoLabels().empty());

    adaptor.BeginUndoGroup("next");
    Add();
    adaptor.EndUndoGroup();
    EXPECT_EQ(world.Session().UndoLabels(), (Names{"next"}));
}

TEST_F(UndoGroupsTest, AHoldOfSomebodyElsesIsLeftToItsOwner) {
    theHold.Begin();
    adaptor.BeginUndoGroup("guest");
    Add();
    adaptor.CancelUndoGroup();
    EXPECT_TRUE(theHold.Holding());
    EXPECT_TRUE(TakeHeard().empty());
    theHold.Accept("host");
    EXPECT_EQ(world.Session().UndoLabels(), (Names{"host"}));

    // Nor does it come back when a hold of its owner's ends under the group.
    theHold.Begin();
    adaptor.BeginUndoGroup("guest");
    theHold.Cancel();
    EXPECT_EQ(Add(), 0);
    EXPECT_EQ(TakeHeard(), (Names{"end"}));
    EXPECT_EQ(adaptor.EndUndoGroup(), 0);

    // The cancel of the guest does not linger.
    adaptor.BeginUndoGroup("own");
    Add();
    adaptor.EndUndoGroup();
    EXPECT_EQ(world.Session().UndoLabels(), (Names{"own", "host"}));
}

TEST_F(UndoGroupsTest, EndingWhatIsNotOpenIsReportedAndChangesNothing) {
    theHold.Begin();
    EXPECT_EQ(CodeOf(adaptor.EndUndoGroup()), "UNDO_STARTENDMISMATCH");
    EXPECT_EQ(CodeOf(adaptor.CancelUndoGroup()), "UNDO_STARTENDMISMATCH");
    EXPECT_TRUE(theHold.Holding());
    theHold.Cancel();
    EXPECT_EQ(
        TimesTraced("(ERROR): Error: undo group mismatch. Attempt to end a non-existing undo group "
                    "detected\n"),
        2U);
    EXPECT_EQ(TimesTraced("Return value: Mismatch on undo start and end group\n"), 2U);

    adaptor.BeginUndoGroup("sound");
    Add();
    EXPECT_EQ(adaptor.EndUndoGroup(), 0);
    EXPECT_EQ(world.Session().UndoLabels(), (Names{"sound"}));
}

TEST_F(UndoGroupsTest, AChunkThatNoGroupTakesEndsAtOnce) {
    EXPECT_EQ(CodeOf(Add()), "UNDO_NOTHOLDING");
    EXPECT_EQ(TakeHeard(), (Names{"end"}));
    EXPECT_EQ(CodeOf(adaptor.AddUndoChunk(nullptr)), "UNDO_NOTHOLDING");

    theHold.Begin();
    EXPECT_EQ(CodeOf(Add()), "UNDO_NOTHOLDING");
    EXPECT_EQ(TakeHeard(), (Names{"end"}));
    theHold.Cancel();
}

TEST_F(UndoGroupsTest, ANullChunkIsAStepThatDoesNothing) {
    adaptor.BeginUndoGroup("null");
    EXPECT_EQ(adaptor.AddUndoChunk(nullptr), 0);
    adaptor.EndUndoGroup();
    EXPECT_TRUE(world.Session().Undo());
    EXPECT_TRUE(world.Session().Redo());
}

TEST_F(UndoGroupsTest, AChunkAddedWhileTheHostUndoesIsRefused) {
    class Adding final : public TVL::CUndo {
      public:
        explicit Adding(UndoGroupsTest& test) : test_(test) {}
        void Undo(bool) override {
            test_.adaptor.BeginUndoGroup("inside");
            EXPECT_FALSE(test_.adaptor.IsHoldingUndo());
            EXPECT_NE(test_.Add(), 0);
            if (leavesOpen) return;
            test_.adaptor.EndUndoGroup();
        }
        void Redo() override { Undo(true); }

        bool leavesOpen = false;

      private:
        UndoGroupsTest& test_;
    };
    auto* const chunk = new Adding(*this);
    adaptor.BeginUndoGroup("step");
    adaptor.AddUndoChunk(chunk);
    adaptor.EndUndoGroup();
    EXPECT_TRUE(world.Session().Undo());
    EXPECT_EQ(TakeHeard(), (Names{"end"}));

    // A group that stays open has no hold to the end.
    chunk->leavesOpen = true;
    EXPECT_TRUE(world.Session().Redo());
    TakeHeard();
    EXPECT_FALSE(theHold.Holding());
    EXPECT_TRUE(adaptor.IsHoldingUndo());
    EXPECT_EQ(Add(), 0);
    EXPECT_EQ(TakeHeard(), (Names{"end"}));
    theHold.Begin();
    EXPECT_EQ(Add(), 0);
    EXPECT_EQ(adaptor.EndUndoGroup(), 0);
    EXPECT_TRUE(TakeHeard().empty());
    theHold.Accept("host");
    EXPECT_EQ(world.Session().UndoLabels().front(), "host");
}

// The groups' hold ends by other hands: their own ends touch no other hold from then on.
TEST_F(UndoGroupsTest, OwnershipGoesWithTheHold) {
    const std::string file = (world.Folder() / "a.scene").string();
    ASSERT_EQ(world.Session().SaveScene(file).error, "");
    const std::pair<bool, std::function<void()>> ends[] = {
        {false, [&] { world.Session().NewScene(); }},
        {false, [&] { world.Session().Reset(); }},
        {false, [&] { EXPECT_EQ(world.Session().OpenScene(file).error, ""); }},
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
                EXPECT_EQ(Add(), 0);
                EXPECT_EQ(TakeHeard(), (Names{"end"}));
                theHold.Begin();
                EXPECT_EQ(Add(), 0);
                EXPECT_EQ(adaptor.EndUndoGroup(), 0);
                EXPECT_EQ(isCancelled ? adaptor.CancelUndoGroup() : adaptor.EndUndoGroup(), 0);
                EXPECT_NE(adaptor.EndUndoGroup(), 0);
                ASSERT_TRUE(theHold.Holding());
                EXPECT_TRUE(TakeHeard().empty());
                theHold.Accept("other");
                EXPECT_EQ(world.Session().UndoLabels().front(), "other");
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
    EXPECT_EQ(world.Session().UndoLabels(), Names{"own"});
    EXPECT_EQ(TimesTraced("Exception out of own: no mood\n"), 1U);
}

TEST_F(UndoGroupsTest, AnUnusualNestWarnsAndWorks) {
    for (int depth = 0; depth < 103; ++depth)
        adaptor.BeginUndoGroup(std::to_string(depth));
    EXPECT_EQ(TimesTraced("(CRITICAL): DEBUG WARNING: Detected unusual high undo level.\n"), 2U);
    for (int depth = 0; depth < 103; ++depth)
        EXPECT_EQ(adaptor.EndUndoGroup(), 0);

    for (int depth = 0; depth < 6; ++depth)
        adaptor.BeginUndoGroup("same");
    EXPECT_EQ(TimesTraced(
                  "(WARNING): DEBUG WARNING: Detected duplicated undo groups. Possible undo group "
                  "mismatch\n"),
              2U);
    for (int depth = 0; depth < 6; ++depth)
        EXPECT_EQ(adaptor.EndUndoGroup(), 0);
}

TEST_F(UndoGroupsTest, UndoingARecordingFlipsTheHostsTime) {
    adaptor.SetCurrentTime(1);
    adaptor.BeginUndoGroup("record");
    adaptor.BeginRecordingUnkeyed({});
    adaptor.EndRecording();
    adaptor.EndUndoGroup();
    adaptor.SetCurrentTime(2);  // by the user, without a step
    EXPECT_TRUE(world.Session().Undo());
    EXPECT_EQ(adaptor.GetCurrentTime(), 1);
    EXPECT_TRUE(world.Session().Redo());
    EXPECT_EQ(adaptor.GetCurrentTime(), 2);

    adaptor.BeginUndoGroup("cancelled");
    adaptor.BeginRecordingUnkeyed({});
    adaptor.SetCurrentTime(3);
    adaptor.EndRecording();
    adaptor.CancelUndoGroup();
    EXPECT_EQ(adaptor.GetCurrentTime(), 2);
}

}  // namespace
