#include <stdexcept>

#include "adaptor/max_adaptor_interface.h"
#include "host/animate.h"
#include "host/hold.h"
#include "scene_state/node_tags.h"
#include "tests/adaptor/attach_panel.h"
#include "tests/nodes/node_test.h"

namespace {

// A Core that opens what it can and is thrown out of it, wherever it is called.
class Thrown : public NodeTest {
  protected:
    void Fail() {
        adaptor.BeginUndoGroup("left");
        adaptor.BeginRecording({&rig});
        adaptor.RequestFocus();
        throw std::runtime_error("no mood");
    }
    std::function<void()> Failing() {
        return [this] { Fail(); };
    }
    void FailAt(const std::string& call) {
        world.Core().onCall = [this, call](const std::string& made) {
            if (made.starts_with(call)) Fail();
        };
    }
    void DeleteHip() {
        world.Session().Select({"Rig_Hip"});
        world.Session().DeleteSelected();
    }

    // Nothing is open that a user would meet, and what the Core still has to end ends nothing.
    void ExpectNothingOpen(const std::string& call) {
        SCOPED_TRACE(call);
        EXPECT_FALSE(theHold.Holding());
        EXPECT_FALSE(Animating());
        EXPECT_TRUE(world.Session().AnimateButtonEnabled());
        EXPECT_TRUE(world.Session().AcceleratorsEnabled());
        theHold.Begin();
        while (adaptor.IsHoldingUndo())
            EXPECT_EQ(adaptor.EndUndoGroup(), 0);
        EXPECT_TRUE(theHold.Holding());
        theHold.Cancel();
    }
};

class ThrowingChunk final : public TVL::CUndo {
  public:
    using Act = std::function<void(const std::string&)>;
    explicit ThrowingChunk(Act act) : act_(std::move(act)) {}
    void Undo(bool) override { act_("Undo"); }
    void Redo() override { act_("Redo"); }
    void Release() override {
        const Act act = act_;
        delete this;
        act("Release");
    }

  private:
    Act act_;
};

class Button final : public TVL::Util::MessageNode {
  public:
    explicit Button(std::function<void()> act) : MessageNode("button"), act_(std::move(act)) {}
    void Receive(TVL::Util::Message*, bool) override { act_(); }
    std::int32_t Send(TVL::Util::MessageNode*, TVL::Util::Message*) override {
        act_();
        return 0;
    }

  private:
    std::function<void()> act_;
};

class Registry final : public TVL::ErrorCode {
  public:
    using TVL::ErrorCode::operator=;
    TVL::ErrorCode* Declare(const std::string&, const std::string&, std::int32_t) override {
        throw 1;
    }
};

TEST_F(Thrown, GetsNoFurtherThanTheCallAndLeavesNothingOpen) {
    struct Row {
        const char* call;
        std::function<void()> act;
    };
    const auto withChunk = [this](const std::string& at, const std::function<void()>& act) {
        InGroup("chunk", [&] {
            adaptor.AddUndoChunk(new ThrowingChunk([this, at](const std::string& call) {
                if (call == at) Fail();
            }));
        });
        act();
        adaptor.FlushUndoBuffer();
    };
    const Row rows[] = {
        {"ShowCore", [&] { FailAt("show"), world.Session().PressButton(StartButton); }},
        {"NotifyTimeChanged", [&] { FailAt("time"), world.Session().SetTime(4800); }},
        {"SetCoreState", [&] { FailAt("set state"), GatherSceneState(); }},
        {"GetOptionValue", [&] { world.Core().onOptionAsked = [&](int) { Fail(); }, Camera("C"); }},
        {"IsCoreRunning", [&] { world.Core().onRunningAsked = Failing(), DeleteHip(); }},
        {"StopCore", [&] { world.Core().isRunning = true, FailAt("stop"), DeleteHip(); }},
        {"HasExtension of an owner", [&] { rig.onListed = Failing(), DeleteHip(); }},
        {"extension 43 of an owner", [&] { rig.onDeletion = Failing(), DeleteHip(); }},
        {"OnNodeRestored",
         [&] {
             listener.onRestored = [&](TVL::CNode*) { Fail(); };
             InGroup("new", [&] { Helper("New"); });
             adaptor.EndUndoGroup();
         }},
        {"OnNodeRemoved",
         [&] {
             InGroup("new", [&] { Helper("New"); });
             listener.onRemoved = [&](TVL::CNode*) { Fail(); };
             EXPECT_TRUE(world.Session().Undo());
         }},
        {"Undo of an undo chunk", [&] { withChunk("Undo", [&] { world.Session().Undo(); }); }},
        {"Redo of an undo chunk",
         [&] { withChunk("Redo", [&] { world.Session().Undo(), world.Session().Redo(); }); }},
        {"Release of an undo chunk", [&] { withChunk("Release", [] {}); }},
        {"ResetCore", [&] { FailAt("reset"), world.Session().NewScene(); }},
        {"BindOption",
         [&] {
             FailAt("bind 1027"), UtilityManager::Get().DetachCore(),
                 UtilityManager::Get().AttachCore();
         }},
        {"GetOptionNode",
         [&] {
             FailAt("option"), UtilityManager::Get().DetachCore(),
                 UtilityManager::Get().AttachCore();
         }},
    };
    for (const Row& row : rows) {
        Helper("Hip");
        row.act();
        world.Core().onCall = nullptr;
        world.Core().onOptionAsked = nullptr;
        world.Core().onRunningAsked = rig.onListed = rig.onDeletion = nullptr;
        listener.onRestored = listener.onRemoved = nullptr;
        EXPECT_EQ(TimesTraced(std::string("Exception out of ") + row.call + ": no mood\n"), 1U)
            << Trace();
        ExpectNothingOpen(row.call);
        ASSERT_EQ(AttachedCore(), &world.Core());
        while (Find("Hip"))
            Find("Hip")->Delete(true);
    }
}

TEST_F(Thrown, CountsAsNoAnswerOfRegistriesAndMessageNodes) {
    Button button(Failing());
    world.Core().otherButton = &button;
    UtilityManager::Get().DetachCore();
    UtilityManager::Get().AttachCore();
    EXPECT_EQ(AttachedCore(), &world.Core());
    ExpectNothingOpen("Receive");
    EXPECT_THROW(button.Listen(MaxAdaptorInterface::GetInstance()), std::runtime_error);
    UtilityManager::Get().DetachCore();
    EXPECT_EQ(button.GetListenerCount(), 0);
    EXPECT_EQ(MaxAdaptorInterface::GetInstance()->GetListenerCount(), 0);
    EXPECT_EQ(TimesTraced("Exception out of Receive: no mood\n"), 2U) << Trace();

    Registry registry;
    adaptor.SetErrorCode(&registry);
    EXPECT_EQ(adaptor.EndUndoGroup(), -1);
    adaptor.ClearErrorCode();
    EXPECT_EQ(TimesTraced("Exception out of Declare: something that is no std::exception\n"), 1U);
}

// What is opened around the call is the Core's further on.
TEST_F(Thrown, EndsNothingThatWasOpenBefore) {
    adaptor.BeginUndoGroup("take");
    adaptor.BeginRecording({&rig});
    adaptor.RequestFocus();
    FailAt("time");
    world.Session().SetTime(4800);
    world.Core().onCall = nullptr;
    EXPECT_TRUE(theHold.Holding());
    EXPECT_TRUE(Animating());
    EXPECT_FALSE(world.Session().AcceleratorsEnabled());
    adaptor.RestoreFocus();
    adaptor.EndRecording();
    EXPECT_FALSE(Animating());
    EXPECT_TRUE(world.Session().AcceleratorsEnabled());
    Helper("Hip");
    adaptor.EndUndoGroup();
    adaptor.EndUndoGroup();
    EXPECT_EQ(world.Session().UndoLabels(), std::vector<std::string>{"take"});
}

TEST_F(Thrown, RefusesTheStart) {
    puppet::Stage& stage = puppet::TheStage();
    UtilityManager& manager = UtilityManager::Get();
    for (std::function<void()>* routine : {&stage.onVersion, &stage.onAttach}) {
        manager.DetachCore();
        TVL::Log placed;
        *routine = [&] {
            if (!stage.adaptor) throw std::runtime_error("no version");
            adaptor.SetLog(&placed);
            Fail();
        };
        EXPECT_EQ(manager.AttachCore(), 0);
        *routine = nullptr;
        EXPECT_EQ(AttachedCore(), nullptr);
        EXPECT_FALSE(TVL::Log::external);
        EXPECT_FALSE(adaptor.IsHoldingUndo());
        ExpectNothingOpen("attach");
        EXPECT_TRUE(world.Session().UndoLabels().empty());
    }
    EXPECT_EQ(TimesTraced("Exception out of attach: no mood\n"), 1U) << Trace();

    stage.onDetach = [&] { world.Core().Leave(), Fail(); };
    manager.AttachCore();
    ASSERT_EQ(AttachedCore(), &world.Core());
    manager.DetachCore();
    EXPECT_FALSE(puppet::TheStage().isLoaded);
    ExpectNothingOpen("detach");
    stage.onDetach = nullptr;
}

// Neither a half of the state nor none takes the place of what the file has.
TEST_F(Thrown, RefusesTheSave) {
    Helper("Hip");
    rig.parts = {"<masternode/>"};
    world.Core().state = XMLNode("<state><take/></state>");
    const std::string path = (world.Folder() / "take.scene").string();
    ASSERT_EQ(world.Session().SaveScene(path).error, "");
    const std::string whole = ReadFile(path);
    const auto expectRefusal = [&](const char* reason) {
        EXPECT_NE(world.Session().SaveScene(path).error, "");
        EXPECT_EQ(ReadFile(path), whole);
        EXPECT_EQ(TimesTraced(reason), 1U);
        ExpectNothingOpen(reason);
        world.Core().onCall = nullptr;
        rig.onAsked = nullptr;
        EXPECT_EQ(world.Session().SaveScene(path).error, "");
        EXPECT_EQ(ReadFile(path), whole);
    };
    FailAt("get state");
    expectRefusal("the CORE could not give its state");
    rig.onAsked = Failing();
    expectRefusal("an owner of nodes could not give its state");

    world.Core().state = XMLNode();
    for (int save = 0; save < 2; ++save)
        EXPECT_EQ(world.Session().SaveScene(path).error, "");
    EXPECT_EQ(TimesTraced("CORE has nodes, and its state is suddenly empty"), 1U);

    // What the Core could not take of a file stays with the scene.
    world.Core().state = XMLNode("<state><take/></state>");
    ASSERT_EQ(world.Session().SaveScene(path).error, "");
    Find("Hip")->Destroy();
    FailAt("set state");
    const headless::FileOutcome opened = world.Session().OpenScene(path);
    EXPECT_EQ(opened.complaints.size(), 1U);
    EXPECT_FALSE(world.Session().UtilityChunks()[0].isTaken);
    HostString tag;
    EXPECT_TRUE(Host("Rig_Hip")->GetUserPropString("TVL_tag", tag));
    EXPECT_NE(tag, "");

    // The next save writes it ahead of what the Core has by then, in which order both are given.
    world.Core().onCall = nullptr;
    world.Core().state = XMLNode("<state><take/><take/></state>");
    ASSERT_EQ(world.Session().SaveScene(path).error, "");
    world.Core().TakeCalls();
    EXPECT_TRUE(world.Session().OpenScene(path).complaints.empty());
    const PuppetCore::Calls calls = world.Core().TakeCalls();
    ASSERT_GE(calls.size(), 3U);
    EXPECT_EQ(calls[1], "set state <state><take/></state>");
    EXPECT_EQ(calls[2], "set state <state><take/><take/></state>");
}

}  // namespace
