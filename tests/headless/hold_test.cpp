#include "tests/headless/host_world.h"

namespace {

// Writes down what happens to it, and may do something else on top.
struct Chronicle final : RestoreObj {
    explicit Chronicle(std::string own, std::function<void()> act = {})
        : name(std::move(own)), onRestore(std::move(act)) {}
    ~Chronicle() override { told += "free " + name + ", "; }
    void Restore(int isUndo) override {
        told += (isUndo != 0 ? "undo " : "cancel ") + name + ", ";
        if (onRestore) onRestore();
    }
    void Redo() override { told += "redo " + name + ", "; }
    void EndHold() override { told += "held " + name + ", "; }

    std::string name;
    std::function<void()> onRestore;
};

class HoldTest : public HostWorld {
  protected:
    // Two records, such as 1a and 1b.
    void Put(const std::string& step, const std::function<void()>& onRestore = {}) {
        theHold.Put(new Chronicle(step + "a"));
        theHold.Put(new Chronicle(step + "b", onRestore));
    }
    void Make(const std::string& step, const std::function<void()>& onRestore = {}) {
        Step([&] { Put(step, onRestore); }, step.c_str());
    }
};

TEST_F(HoldTest, AStepIsUndoneBackwardsRedoneInItsOrderAndGoesNewestFirst) {
    for (const char* step : {"1", "2", "3"})
        Make(step);
    ExpectTold("held 1a, held 1b, held 2a, held 2b, held 3a, held 3b, ");
    session.Undo();
    session.Undo();
    EXPECT_TRUE(session.Redo());
    session.Undo();
    ExpectTold("undo 3b, undo 3a, undo 2b, undo 2a, redo 2a, redo 2b, undo 2b, undo 2a, ");

    // Neither an empty step nor one that is cancelled ends redoing.
    Step([] {});
    theHold.Begin();
    Put("c");
    theHold.Cancel();
    ExpectTold("cancel cb, cancel ca, free cb, free ca, ");
    EXPECT_EQ(session.UndoLabels(), Lines{"1"});
    EXPECT_EQ(session.RedoLabels(), (Lines{"2", "3"}));
    Make("4");
    ExpectTold("held 4a, held 4b, free 3b, free 3a, free 2b, free 2a, ");
    session.Undo();
    host.FlushUndoBuffer();
    ExpectTold("undo 4b, undo 4a, free 4b, free 4a, free 1b, free 1a, ");
    EXPECT_FALSE(session.Undo() || session.Redo());
}

TEST_F(HoldTest, WhatDoesNotFitTheHoldIsABreachAndDoesNothing) {
    theHold.Put(new Chronicle("stray"));
    theHold.Accept("nothing was begun");
    theHold.Cancel();
    Make("1");
    theHold.Begin();
    Put("2");
    theHold.Begin();
    EXPECT_FALSE(session.Undo());
    host.FlushUndoBuffer();
    ExpectTold("free stray, held 1a, held 1b, free 1b, free 1a, ");
    theHold.Accept("open");
    EXPECT_EQ(session.UndoLabels(), Lines{"open"});
    EXPECT_EQ(headless::TakeBreachLines(),
              (Lines{"Hold::Put: no hold is open", "Hold::Accept: no hold is open",
                     "Hold::Cancel: no hold is open", "Hold::Begin: a hold is open already"}));
}

// A flush waits for the end of the step, and the other records of the step are met all the same.
TEST_F(HoldTest, ARecordMayCallBackAnythingAndThrow) {
    Make("1");
    Make("2", [this] {
        EXPECT_TRUE(theHold.RestoreOrRedoing());
        Make("3");
        EXPECT_FALSE(session.Undo() || session.Redo());
        host.FlushUndoBuffer();
        throw std::runtime_error("by a plug-in");
    });
    told.clear();
    EXPECT_THROW(session.Undo(), std::runtime_error);
    ExpectTold("undo 2b, free 3a, free 3b, undo 2a, free 2b, free 2a, free 1b, free 1a, ");
    EXPECT_TRUE(session.RedoLabels().empty());
    const std::string running = ": a step is being undone, redone or cancelled (undo)";
    EXPECT_EQ(headless::TakeBreachLines(),
              (Lines{"Hold::Begin" + running, "Hold::Put" + running, "Hold::Put" + running,
                     "Hold::Accept" + running}));
    theHold.Begin();
    Put("c", [] { throw std::runtime_error("by a plug-in"); });
    EXPECT_THROW(theHold.Cancel(), std::runtime_error);
    EXPECT_FALSE(theHold.RestoreOrRedoing());
    ExpectTold("cancel cb, cancel ca, free cb, free ca, ");
}

}  // namespace
