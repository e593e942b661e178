#include "host/hold.h"
#include "tests/support/trace.h"
#include "tests/support/world.h"

namespace {

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
    std::string inChunk;  // done by each chunk when it is undone or redone

    struct Chunk final : TVL::CUndo {
        explicit Chunk(UndoGroupsTest& world) : test(world) {}
        ~Chunk() override { test.trace += 'E'; }
        void Undo(bool isUndo) override { Meet(isUndo ? 'U' : 'C'); }
        void Redo() override { Meet('R'); }
        void Meet(char what) {
            test.trace += what;
            test.Go(test.inChunk);
        }
        UndoGroupsTest& test;
    };

    // Each group has the next letter for its name.
    char nextName = 'a';
    const std::map<char, std::function<std::int32_t()>> acts = {
        {'(', [&] { return adaptor.BeginUndoGroup(std::string(1, nextName++)); }},
        {')', [&] { return adaptor.EndUndoGroup(); }},
        {'x', [&] { return adaptor.CancelUndoGroup(); }},
        {'+', [&] { return adaptor.AddUndoChunk(new Chunk(*this)); }},
        {'0', [&] { return adaptor.AddUndoChunk(nullptr); }},
        {'[', [] { return theHold.Begin(), 0; }},
        {']', [] { return theHold.Accept("host"), 0; }},
        {'/', [] { return theHold.Cancel(), 0; }},
        {'u', [&] { return adaptor.PerformUndo() ? 0 : 1; }},
        {'r', [&] { return host.Redo() ? 0 : 1; }},
        {'f', [&] { return adaptor.FlushUndoBuffer(); }},
        {'n', [&] { return host.NewScene(), 0; }},
        {'s', [&] { return host.Reset(), 0; }},
        {'o', [&] { return host.OpenScene(file).error.empty() ? 0 : 1; }}};

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
};

TEST_F(UndoGroupsTest, ANestIsOneStepUnderItsOutermostNameAndACancelAnywhereTakesAllOfItBack) {
    EXPECT_EQ(Traced("(((+0)))urf"), "(:(:(:+:0:):):)auUrRafE");
    EXPECT_EQ(Traced("((+x)"), "(:(:+:x:)CE");
    // Nor does the cancel of a guest in another hold linger.
    EXPECT_EQ(Traced("[(x/(+)"), "[.(:x./(:+:)g");
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
    inChunk = "(+)";
    EXPECT_EQ(Traced("(+)u"), "(:+:)auU(+E!)");
    // A group that stays open has no hold to the end.
    inChunk = "(+";
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

TEST_F(UndoGroupsTest, AnUnusualNestWarns) {
    for (int depth = 0; depth < 103; ++depth)
        adaptor.BeginUndoGroup(depth < 97 ? std::to_string(depth) : "same");
    for (const char* warning :
         {"(CRITICAL): DEBUG WARNING: Detected unusual high undo level.\n",
          "(WARNING): DEBUG WARNING: Detected duplicated undo groups. Possible undo group "
          "mismatch\n"})
        EXPECT_EQ(TimesTraced(warning), 2U) << warning;
    Go(std::string(103, 'x'));
    EXPECT_EQ(Traced(")"), ")!");
}

TEST_F(UndoGroupsTest, UndoingARecordingFlipsTheHostsTimeAndACancelPutsItBack) {
    const auto timeAfter = [&](const char* script) {
        Go(script);
        return adaptor.GetCurrentTime();
    };
    for (const bool isCancelled : {true, false}) {
        adaptor.SetCurrentTime(1);
        Go("(");
        adaptor.BeginRecordingUnkeyed({});
        adaptor.EndRecording();
        adaptor.SetCurrentTime(2);
        EXPECT_EQ(timeAfter(isCancelled ? "x" : ")"), isCancelled ? 1 : 2);
    }
    EXPECT_EQ(timeAfter("u"), 1);
    EXPECT_EQ(timeAfter("r"), 2);
}

}  // namespace
