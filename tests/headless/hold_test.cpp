#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "headless/breaches.h"
#include "tests/headless/host_world.h"

namespace {

using Texts = std::vector<std::string>;

// Writes down what happens to it, and may do something else on top.
struct Chronicle final : RestoreObj {
    Chronicle(std::string& all, std::string own, std::function<void()> act)
        : told(all), name(std::move(own)), onRestore(std::move(act)) {}
    ~Chronicle() override { told += "free " + name + ", "; }
    void Restore(int isUndo) override {
        told += (isUndo != 0 ? "undo " : "cancel ") + name + ", ";
        if (onRestore) onRestore();
    }
    void Redo() override { told += "redo " + name + ", "; }
    void EndHold() override { told += "held " + name + ", "; }

    std::string& told;
    std::string name;
    std::function<void()> onRestore;
};

class HoldTest : public HostWorld {
  protected:
    ~HoldTest() override { session.ShutDown(); }

    void Put(const std::string& name, std::function<void()> onRestore = {}) {
        theHold.Put(new Chronicle(told, name, std::move(onRestore)));
    }
    // A step of two records, such as 1a and 1b.
    void Make(const std::string& step, const std::function<void()>& onRestore = {}) {
        theHold.Begin();
        Put(step + "a");
        Put(step + "b", onRestore);
        theHold.Accept(step.c_str());
    }
    std::string Told() { return std::exchange(told, {}); }

    std::string told;
};

TEST_F(HoldTest, AStepIsUndoneBackwardsRedoneInItsOrderAndGoesNewestFirst) {
    for (const char* step : {"1", "2", "3"})
        Make(step);
    EXPECT_EQ(Told(), "held 1a, held 1b, held 2a, held 2b, held 3a, held 3b, ");
    session.Undo();
    session.Undo();
    EXPECT_EQ(Told(), "undo 3b, undo 3a, undo 2b, undo 2a, ");
    EXPECT_TRUE(session.Redo());
    EXPECT_EQ(Told(), "redo 2a, redo 2b, ");
    EXPECT_EQ(session.UndoLabels(), (Texts{"2", "1"}));
    session.Undo();
    Told();

    // Neither an empty step nor one that is cancelled ends redoing.
    Step([] {});
    theHold.Begin();
    Put("a");
    Put("b");
    theHold.Cancel();
    EXPECT_EQ(Told(), "cancel b, cancel a, free b, free a, ");
    EXPECT_EQ(session.UndoLabels(), Texts{"1"});
    EXPECT_EQ(session.RedoLabels(), (Texts{"2", "3"}));
    Make("4");
    EXPECT_EQ(Told(), "held 4a, held 4b, free 3b, free 3a, free 2b, free 2a, ");
    session.Undo();
    host.FlushUndoBuffer();
    EXPECT_EQ(Told(), "undo 4b, undo 4a, free 4b, free 4a, free 1b, free 1a, ");
    EXPECT_FALSE(session.Undo());
    EXPECT_FALSE(session.Redo());
}

TEST_F(HoldTest, WhatDoesNotFitTheHoldIsABreachAndDoesNothing) {
    Put("stray");
    theHold.Accept("nothing was begun");
    theHold.Cancel();
    EXPECT_FALSE(session.Undo());
    Make("1");
    theHold.Begin();
    Put("open");
    theHold.Begin();
    EXPECT_FALSE(session.Undo());
    host.FlushUndoBuffer();
    EXPECT_EQ(Told(), "free stray, held 1a, held 1b, free 1b, free 1a, ");
    theHold.Accept("open");
    EXPECT_EQ(session.UndoLabels(), Texts{"open"});
    EXPECT_EQ(headless::TakeBreachLines(),
              (Texts{"Hold::Put: no hold is open", "Hold::Accept: no hold is open",
                     "Hold::Cancel: no hold is open", "Hold::Begin: a hold is open already"}));
}

// A flush waits for the end of the step, and the other records of the step are met all the same.
TEST_F(HoldTest, ARecordMayCallBackAnythingAndThrow) {
    Make("1");
    Make("2", [this] {
        EXPECT_TRUE(theHold.RestoreOrRedoing());
        Make("3");
        EXPECT_FALSE(session.Undo());
        EXPECT_FALSE(session.Redo());
        host.FlushUndoBuffer();
        throw std::runtime_error("by a plug-in");
    });
    Told();
    EXPECT_THROW(session.Undo(), std::runtime_error);
    EXPECT_EQ(Told(), "undo 2b, free 3a, free 3b, undo 2a, free 2b, free 2a, free 1b, free 1a, ");
    EXPECT_TRUE(session.RedoLabels().empty());
    const std::string running = ": a step is being undone, redone or cancelled (undo)";
    EXPECT_EQ(headless::TakeBreachLines(),
              (Texts{"Hold::Begin" + running, "Hold::Put" + running, "Hold::Put" + running,
                     "Hold::Accept" + running}));
    theHold.Begin();
    Put("c");
    Put("d", [] { throw std::runtime_error("by a plug-in"); });
    EXPECT_THROW(theHold.Cancel(), std::runtime_error);
    EXPECT_FALSE(theHold.RestoreOrRedoing());
    EXPECT_EQ(Told(), "cancel d, cancel c, free d, free c, ");
}

}  // namespace
