#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "headless/breaches.h"
#include "tests/headless/host_world.h"

namespace {

using Texts = std::vector<std::string>;

// Writes what happens to it into a list, and may do something else on top.
class Chronicle final : public RestoreObj {
  public:
    Chronicle(Texts& told, std::string name, std::function<void()> onRestore = {},
              std::function<void()> onEnd = {})
        : told_(told),
          name_(std::move(name)),
          onRestore_(std::move(onRestore)),
          onEnd_(std::move(onEnd)) {}
    ~Chronicle() override {
        told_.push_back("free " + name_);
        if (onEnd_) onEnd_();
    }
    void Restore(int isUndo) override {
        told_.push_back((isUndo != 0 ? "undo " : "cancel ") + name_);
        if (onRestore_) onRestore_();
    }
    void Redo() override { told_.push_back("redo " + name_); }
    void EndHold() override { told_.push_back("held " + name_); }

  private:
    Texts& told_;
    std::string name_;
    std::function<void()> onRestore_;
    std::function<void()> onEnd_;
};

class HoldTest : public HostWorld {
  protected:
    void Put(const std::string& name, std::function<void()> onRestore = {},
             std::function<void()> onEnd = {}) {
        theHold.Put(new Chronicle(told, name, std::move(onRestore), std::move(onEnd)));
    }
    Texts Told() { return std::exchange(told, {}); }

    static Texts Breaches() {
        Texts calls;
        for (const headless::Breach& breach : headless::TakeBreaches())
            calls.push_back(breach.call + ": " + breach.what);
        return calls;
    }

    ~HoldTest() override { session.ShutDown(); }

    Texts told;
};

TEST_F(HoldTest, AStepIsUndoneBackwardsAndRedoneInItsOrder) {
    Step([this] {
        Put("a");
        Put("b");
    });
    EXPECT_EQ(Told(), (Texts{"held a", "held b"}));
    EXPECT_TRUE(session.Undo());
    EXPECT_EQ(Told(), (Texts{"undo b", "undo a"}));
    EXPECT_TRUE(session.Redo());
    EXPECT_EQ(Told(), (Texts{"redo a", "redo b"}));
    EXPECT_FALSE(session.Redo());
    host.FlushUndoBuffer();
    EXPECT_EQ(Told(), (Texts{"free b", "free a"}));
    EXPECT_FALSE(session.Undo());
}

TEST_F(HoldTest, ACancelledHoldIsTakenBackAndLeavesTheStepsAsTheyWere) {
    Step([this] { Put("kept"); }, "kept");
    Step([this] { Put("undone"); }, "undone");
    session.Undo();
    Told();
    theHold.Begin();
    Put("a");
    Put("b");
    theHold.Cancel();
    EXPECT_EQ(Told(), (Texts{"cancel b", "cancel a", "free b", "free a"}));
    EXPECT_FALSE(theHold.Holding());
    EXPECT_EQ(session.UndoLabels(), Texts{"kept"});
    EXPECT_EQ(session.RedoLabels(), Texts{"undone"});
}

TEST_F(HoldTest, AnEmptyHoldIsNoStepAndOnlyARealOneEndsRedoing) {
    Step([this] { Put("a"); });
    session.Undo();
    Step([] {});
    EXPECT_EQ(session.RedoLabels().size(), 1U);
    Told();
    Step([this] { Put("b"); });
    EXPECT_EQ(Told(), (Texts{"held b", "free a"}));
    EXPECT_TRUE(session.RedoLabels().empty());
}

TEST_F(HoldTest, LabelsComeAsTheStepsWouldGoAndRecordsGoNewestFirst) {
    for (const char* name : {"1", "2", "3", "4"})
        Step([&] { Put(name); }, name);
    session.Undo();
    session.Undo();
    EXPECT_EQ(session.UndoLabels(), (Texts{"2", "1"}));
    EXPECT_EQ(session.RedoLabels(), (Texts{"3", "4"}));
    Told();
    host.FlushUndoBuffer();
    EXPECT_EQ(Told(), (Texts{"free 4", "free 3", "free 2", "free 1"}));
}

TEST_F(HoldTest, WhatIsPutWhileNothingIsHeldEndsAtOnce) {
    Put("stray");
    EXPECT_EQ(Told(), Texts{"free stray"});
    theHold.Put(nullptr);
    theHold.Accept("nothing was begun");
    theHold.Cancel();
    EXPECT_FALSE(session.Undo());
    EXPECT_EQ(Breaches(),
              (Texts{"Hold::Put: no hold is open", "Hold::Put: no hold is open",
                     "Hold::Accept: no hold is open", "Hold::Cancel: no hold is open"}));
}

TEST_F(HoldTest, NeitherUndoNorFlushNorASecondBeginTouchesAnOpenHold) {
    Step([this] { Put("old"); });
    theHold.Begin();
    Put("open");
    theHold.Begin();
    EXPECT_FALSE(session.Undo());
    Told();
    host.FlushUndoBuffer();
    EXPECT_EQ(Told(), Texts{"free old"});
    theHold.Accept("open");
    theHold.Accept("again");
    EXPECT_EQ(Breaches(),
              (Texts{"Hold::Begin: a hold is open already", "Hold::Accept: no hold is open"}));
    EXPECT_EQ(session.UndoLabels(), Texts{"open"});
    EXPECT_TRUE(session.Undo());
    EXPECT_EQ(Told(), (Texts{"held open", "undo open"}));
}

TEST_F(HoldTest, ARecordMayCallBackAnythingWhileItIsRestored) {
    const auto callBack = [this] {
        EXPECT_TRUE(theHold.RestoreOrRedoing());
        EXPECT_FALSE(theHold.Holding());
        theHold.Begin();
        Put("refused");
        theHold.Accept("refused");
        EXPECT_FALSE(session.Undo());
        EXPECT_FALSE(session.Redo());
    };
    Step([&] { Put("a", callBack); });
    session.Undo();
    EXPECT_EQ(Told(), (Texts{"held a", "undo a", "free refused"}));
    EXPECT_FALSE(theHold.RestoreOrRedoing());
    EXPECT_EQ(session.RedoLabels().size(), 1U);
    const std::string running = ": a step is being undone, redone or cancelled";
    EXPECT_EQ(Breaches(),
              (Texts{"Hold::Begin" + running, "Hold::Put" + running, "Hold::Accept" + running}));
}

// The rest of the step is met, and what comes after it finds the host as always.
TEST_F(HoldTest, ARecordThatThrowsHindersNoOther) {
    const auto fail = [] { throw std::runtime_error("by a plug-in"); };
    Step([&] {
        Put("a");
        Put("b", fail);
    });
    Told();
    EXPECT_THROW(session.Undo(), std::runtime_error);
    EXPECT_EQ(Told(), (Texts{"undo b", "undo a"}));
    EXPECT_TRUE(session.Redo());
    theHold.Begin();
    Put("c", fail);
    EXPECT_THROW(theHold.Cancel(), std::runtime_error);
    EXPECT_FALSE(theHold.RestoreOrRedoing());
    EXPECT_EQ(Told(), (Texts{"redo a", "redo b", "cancel c", "free c"}));
}

TEST_F(HoldTest, AFlushAskedForInTheMiddleOfAnUndoWaitsForItsEnd) {
    Step([this] { Put("old"); });
    Step([this] {
        Put("a");
        Put("b", [this] { host.FlushUndoBuffer(); });
    });
    Told();
    EXPECT_TRUE(session.Undo());
    EXPECT_EQ(Told(), (Texts{"undo b", "undo a", "free b", "free a", "free old"}));
    EXPECT_TRUE(session.UndoLabels().empty());
    EXPECT_TRUE(session.RedoLabels().empty());
}

TEST_F(HoldTest, ARecordThatIsFreedMayMakeAStepOfItsOwn) {
    Step([this] { Put("a", {}, [this] { Step([this] { Put("late"); }, "late"); }); });
    host.FlushUndoBuffer();
    EXPECT_EQ(session.UndoLabels(), Texts{"late"});
}

}  // namespace
