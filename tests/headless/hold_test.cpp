#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "headless/breaches.h"
#include "tests/headless/host_world.h"

namespace {

using Texts = std::vector<std::string>;

// Writes what happens to it into a list, and may do something else on top.
struct Chronicle final : RestoreObj {
    Chronicle(Texts& list, std::string own, std::function<void()> act)
        : told(list), name(std::move(own)), onRestore(std::move(act)) {}
    ~Chronicle() override { told.push_back("free " + name); }
    void Restore(int isUndo) override {
        told.push_back((isUndo != 0 ? "undo " : "cancel ") + name);
        if (onRestore) onRestore();
    }
    void Redo() override { told.push_back("redo " + name); }
    void EndHold() override { told.push_back("held " + name); }

    Texts& told;
    std::string name;
    std::function<void()> onRestore;
};

class HoldTest : public HostWorld {
  protected:
    ~HoldTest() override { session.ShutDown(); }

    void Put(const std::string& name, std::function<void()> onRestore = {}) {
        theHold.Put(new Chronicle(told, name, std::move(onRestore)));
    }
    Texts Told() { return std::exchange(told, {}); }
    static Texts Breaches() {
        Texts calls;
        for (const headless::Breach& breach : headless::TakeBreaches())
            calls.push_back(breach.call + ": " + breach.what);
        return calls;
    }

    Texts told;
};

TEST_F(HoldTest, AStepIsUndoneBackwardsRedoneInItsOrderAndGoesNewestFirst) {
    for (const char* name : {"1", "2", "3", "4"}) {
        Step(
            [&] {
                Put(name + std::string("a"));
                Put(name + std::string("b"));
            },
            name);
        EXPECT_EQ(Told(),
                  (Texts{"held " + std::string(name) + "a", "held " + std::string(name) + "b"}));
    }
    session.Undo();
    EXPECT_EQ(Told(), (Texts{"undo 4b", "undo 4a"}));
    session.Undo();
    EXPECT_EQ(session.UndoLabels(), (Texts{"2", "1"}));
    EXPECT_EQ(session.RedoLabels(), (Texts{"3", "4"}));
    Told();
    EXPECT_TRUE(session.Redo());
    EXPECT_EQ(Told(), (Texts{"redo 3a", "redo 3b"}));
    host.FlushUndoBuffer();
    EXPECT_EQ(Told(), (Texts{"free 4b", "free 4a", "free 3b", "free 3a", "free 2b", "free 2a",
                             "free 1b", "free 1a"}));
    EXPECT_FALSE(session.Undo());
    EXPECT_FALSE(session.Redo());
}

TEST_F(HoldTest, OnlyARealStepEndsRedoingAndACancelTakesItsOwnBack) {
    Step([this] { Put("kept"); }, "kept");
    Step([this] { Put("undone"); }, "undone");
    Step([this] { Put("last"); }, "last");
    session.Undo();
    session.Undo();
    Step([] {});
    Told();
    theHold.Begin();
    Put("a");
    Put("b");
    theHold.Cancel();
    EXPECT_EQ(Told(), (Texts{"cancel b", "cancel a", "free b", "free a"}));
    EXPECT_FALSE(theHold.Holding());
    EXPECT_EQ(session.UndoLabels(), Texts{"kept"});
    EXPECT_EQ(session.RedoLabels(), (Texts{"undone", "last"}));
    Step([this] { Put("next"); });
    EXPECT_EQ(Told(), (Texts{"held next", "free last", "free undone"}));
    EXPECT_TRUE(session.RedoLabels().empty());
}

TEST_F(HoldTest, WhatDoesNotFitTheHoldIsABreachAndDoesNothing) {
    Put("stray");
    EXPECT_EQ(Told(), Texts{"free stray"});
    theHold.Put(nullptr);
    theHold.Accept("nothing was begun");
    theHold.Cancel();
    EXPECT_FALSE(session.Undo());
    Step([this] { Put("old"); });
    theHold.Begin();
    Put("open");
    theHold.Begin();
    EXPECT_FALSE(session.Undo());
    Told();
    host.FlushUndoBuffer();
    EXPECT_EQ(Told(), Texts{"free old"});
    theHold.Accept("open");
    EXPECT_EQ(session.UndoLabels(), Texts{"open"});
    EXPECT_EQ(Breaches(), (Texts{"Hold::Put: no hold is open", "Hold::Put: no hold is open",
                                 "Hold::Accept: no hold is open", "Hold::Cancel: no hold is open",
                                 "Hold::Begin: a hold is open already"}));
}

TEST_F(HoldTest, ARecordMayCallBackAnythingAndAFlushWaitsForTheEndOfItsStep) {
    Step([this] { Put("old"); });
    Step([&] {
        Put("a");
        Put("b", [this] {
            EXPECT_TRUE(theHold.RestoreOrRedoing());
            EXPECT_FALSE(theHold.Holding());
            theHold.Begin();
            Put("refused");
            theHold.Accept("refused");
            EXPECT_FALSE(session.Undo());
            EXPECT_FALSE(session.Redo());
            host.FlushUndoBuffer();
        });
    });
    Told();
    EXPECT_TRUE(session.Undo());
    EXPECT_EQ(Told(), (Texts{"undo b", "free refused", "undo a", "free b", "free a", "free old"}));
    EXPECT_FALSE(theHold.RestoreOrRedoing());
    EXPECT_TRUE(session.RedoLabels().empty());
    const std::string running = ": a step is being undone, redone or cancelled";
    EXPECT_EQ(Breaches(),
              (Texts{"Hold::Begin" + running, "Hold::Put" + running, "Hold::Accept" + running}));
}

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

}  // namespace
