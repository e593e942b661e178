#include <gtest/gtest.h>

#include <map>
#include <stdexcept>

#include "host/hold.h"
#include "tests/support/trace.h"
#include "tests/support/world.h"
#include "tvl/error_code.h"
#include "undo/own_step.h"

namespace {

using Names = std::vector<std::string>;

// What is done, a letter each, and what comes of it, behind the letter: "!" for a failure; what the
// chunks hear, "U" undo, "C" cancel, "R" redo, "E" end; ":" if a hold and a group are open, "." for
// a hold and "," for a group alone; the label of a step that is new.
class UndoGroupsTest : public testing::Test {
  protected:
    std::string trace;  // outlives the chunks that the host keeps
    World world;
    headless::Session& host = world.Session();
    TVL::AdaptorInterface& adaptor = world.Adaptor();
    std::string file = (world.Folder() / "a.scene").string();
    std::string inUndo;  // done by a chunk "*" when it is undone or redone

    class Chunk final : public TVL::CUndo {
      public:
        Chunk(UndoGroupsTest& test, bool acts) : test_(test), acts_(acts) {}
        ~Chunk() override { test_.trace += 'E'; }
        void Undo(bool isUndo) override { Meet(isUndo ? 'U' : 'C'); }
        void Redo() override { Meet('R'); }

      private:
        void Meet(char what) {
            test_.trace += what;
            if (acts_) test_.Go(test_.inUndo);
        }
        UndoGroupsTest& test_;
        bool acts_;
    };

    // Each group has the next letter for its name.
    const std::map<char, std::function<std::int32_t()>> acts = {
        {'(', [&] { return adaptor.BeginUndoGroup(std::string(1, nextName_++)); }},
        {')', [&] { return adaptor.EndUndoGroup(); }},
        {'x', [&] { return adaptor.CancelUndoGroup(); }},
        {'+', [&] { return adaptor.AddUndoChunk(new Chunk(*this, false)); }},
        {'*', [&] { return adaptor.AddUndoChunk(new Chunk(*this, true)); }},
        {'0', [&] { return adaptor.AddUndoChunk(nullptr); }},
        {'[', [] { return theHold.Begin(), 0; }},
        {']', [] { return theHold.Accept("host"), 0; }},
        {'/', [] { return theHold.Cancel(), 0; }},
        {'u', [&] { return adaptor.PerformUndo() ? 0 : 1; }},
        {'r', [&] { return host.Redo() ? 0 : 1; }},
        {'f', [&] { return adaptor.FlushUndoBuffer(); }},
        {'n', [&] { return host.NewScene(), 0; }},
        {'s', [&] { return host.Reset(), 0; }},
        {'o', [&] { return host.OpenScene(file).error.empty() ? 0 : 1; }},
    };

    void Go(const std::string& script) {
        for (const char what : script) {
            const std::size_t labels = host.UndoLabels().size();
            trace += what;
            if (acts.at(what)() != 0) trace += '!';
            const bool isOpen = adaptor.IsHoldingUndo();
            if (theHold.Holding()) trace += isOpen ? ':' : '.';
            if (isOpen && !theHold.Holding()) trace += ',';
            if (host.UndoLabels().size() > labels) trace += host.UndoLabels().front();
        }
    }

    std::string Traced(const std::string& script) {
        trace.clear();
        Go(script);
        return trace;
    }

  private:
    char nextName_ = 'a';
};

TEST_F(UndoGroupsTest, ANestBecomesOneStepUnderTheNameOfItsOutermostGroup) {
    EXPECT_EQ(Traced("(((+0)))urf"), "(:(:(:+:0:):):)auUrRafE");
}

TEST_F(UndoGroupsTest, ACancelAnywhereTakesTheWholeNestBackAndNothingAfterIt) {
    EXPECT_EQ(Traced("((+x)"), "(:(:+:x:)CE");
    // Nor does that of a guest in another hold linger.
    EXPECT_EQ(Traced("[(x/(+)"), "[.(:x./(:+:)d");
}

TEST_F(UndoGroupsTest, WhatNoGroupTakesAndWhatIsNotOpenIsReportedAndChangesNothing) {
    EXPECT_EQ(Traced("+0[+)x/(+)"), "+E!0![.+E!.)!.x!./(:+:)a");
    for (const char* line : {"(ERROR): Error: undo group mismatch. Attempt to end a non-existing "
                             "undo group detected\n",
                             "Return value: Mismatch on undo start and end group\n"})
        EXPECT_EQ(TimesTraced(line), 2U) << line;
    EXPECT_EQ(TimesTraced("new_identifier: UNDO_STARTENDMISMATCH\n"), 1U);
    EXPECT_EQ(TimesTraced("new_identifier: UNDO_NOTHOLDING\n"), 1U);
}

TEST_F(UndoGroupsTest, AChunkAddedWhileTheHostUndoesIsRefused) {
    inUndo = "(+)";
    EXPECT_EQ(Traced("(*)u"), "(:*:)auU(+E!)");
    // A group that stays open has no hold to the end.
    inUndo = "(+";
    EXPECT_EQ(Traced("r+[+))]"), "rR(+E!,a+E,[:+:).)!.]host");
}

// The groups' hold ends by other hands: their own ends touch no other hold from then on.
TEST_F(UndoGroupsTest, OwnershipGoesWithTheHold) {
    ASSERT_EQ(host.SaveScene(file).error, "");
    for (const char* start : {"((n", "((s", "((o", "((+n", "((+s", "((+o", "((+]", "((+/"}) {
        Go(start);
        EXPECT_EQ(Traced("+[+)))]"), "+E,[:+:):).)!.]host") << start;
        Go(start);
        EXPECT_EQ(Traced("+[+xxx]"), "+E,[:+:x:x.x!.]host") << start;
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
    for (const char* warning :
         {"(CRITICAL): DEBUG WARNING: Detected unusual high undo level.\n",
          "(WARNING): DEBUG WARNING: Detected duplicated undo groups. Possible undo group "
          "mismatch\n"})
        EXPECT_EQ(TimesTraced(warning), 2U) << warning;
    for (int depth = 0; depth < 103; ++depth)
        EXPECT_EQ(adaptor.EndUndoGroup(), 0);
}

TEST_F(UndoGroupsTest, UndoingARecordingFlipsTheHostsTimeAndACancelPutsItBack) {
    for (const bool isCancelled : {true, false}) {
        adaptor.SetCurrentTime(1);
        adaptor.BeginUndoGroup("record");
        adaptor.BeginRecordingUnkeyed({});
        adaptor.EndRecording();
        adaptor.SetCurrentTime(2);
        isCancelled ? adaptor.CancelUndoGroup() : adaptor.EndUndoGroup();
        EXPECT_EQ(adaptor.GetCurrentTime(), isCancelled ? 1 : 2);
    }
    EXPECT_TRUE(host.Undo());
    EXPECT_EQ(adaptor.GetCurrentTime(), 1);
    EXPECT_TRUE(host.Redo());
    EXPECT_EQ(adaptor.GetCurrentTime(), 2);
}

}  // namespace
