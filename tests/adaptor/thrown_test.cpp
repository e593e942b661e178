#include "adaptor/max_adaptor_interface.h"
#include "adaptor/utility_manager.h"
#include "host/animate.h"
#include "tests/nodes/node_test.h"

namespace {

// A Core that opens what it can and is thrown out of it, wherever it is called.
class Thrown : public NodeTest {
  protected:
    void Open() {
        adaptor.BeginUndoGroup("left");
        adaptor.BeginRecording({&rig});
        adaptor.RequestFocus();
    }
    const std::function<void()> failing = [this] {
        Open();
        throw std::runtime_error("no mood");
    };
    UtilityManager& manager = UtilityManager::Get();
};

class Button final : public TVL::Util::MessageNode {
  public:
    explicit Button(std::function<void()> act) : MessageNode("button"), act_(std::move(act)) {}
    void Receive(TVL::Util::Message*, bool) override { act_(); }
    std::int32_t Send(TVL::Util::MessageNode*, TVL::Util::Message*) override { return act_(), 0; }

  private:
    std::function<void()> act_;
};

TEST_F(Thrown, CountsAsNoAnswer) {
    // What is opened around the call is the Core's further on.
    Open();
    world.Core().onCall = [this](const std::string&) { failing(); };
    world.Session().SetTime(4800);
    world.Core().onCall = nullptr;
    EXPECT_TRUE(theHold.Holding() && Animating());
    EXPECT_FALSE(world.Session().AcceleratorsEnabled());
    adaptor.RestoreFocus();
    adaptor.EndRecording();
    EXPECT_FALSE(Animating());
    EXPECT_TRUE(world.Session().AcceleratorsEnabled());
    Helper("Hip");
    adaptor.EndUndoGroup();
    adaptor.EndUndoGroup();
    EXPECT_EQ(world.Session().UndoLabels(), Names{"left"});

    Button button(failing);
    world.Core().otherButton = &button;
    manager.DetachCore();
    manager.AttachCore();
    EXPECT_EQ(AttachedCore(), &world.Core());
    EXPECT_FALSE(theHold.Holding() || Animating());
    EXPECT_TRUE(world.Session().AcceleratorsEnabled());
    // What the Core still has to end ends nothing.
    theHold.Begin();
    while (adaptor.IsHoldingUndo())
        EXPECT_EQ(adaptor.EndUndoGroup(), 0);
    EXPECT_TRUE(theHold.Holding());
    theHold.Cancel();
    MaxAdaptorInterface& node = *MaxAdaptorInterface::GetInstance();
    EXPECT_THROW(button.Listen(&node), std::runtime_error);
    manager.DetachCore();
    EXPECT_EQ(button.GetListenerCount() + node.GetListenerCount(), 0);
    EXPECT_EQ(TimesTraced("Exception out of Receive: no mood\n"), 2U) << Trace();

    struct Registry final : TVL::ErrorCode {
        using TVL::ErrorCode::operator=;
        ErrorCode* Declare(const std::string&, const std::string&, std::int32_t) override {
            throw 1;
        }
    } registry;
    adaptor.SetErrorCode(&registry);
    EXPECT_EQ(adaptor.EndUndoGroup(), -1);
    adaptor.ClearErrorCode();
    EXPECT_EQ(TimesTraced("Exception out of Declare: something that is no std::exception\n"), 1U);

    world.Core().otherButton = nullptr;
    manager.AttachCore();
    world.Core().onRunningAsked = failing;
    EXPECT_FALSE(IsCoreRunning());
    world.Core().onRunningAsked = nullptr;
}

TEST_F(Thrown, RefusesTheStart) {
    puppet::Stage& stage = puppet::TheStage();
    for (std::function<void()>* routine : {&stage.onVersion, &stage.onAttach}) {
        manager.DetachCore();
        TVL::Log placed;
        *routine = [&] {
            if (!stage.adaptor) throw std::runtime_error("no version");
            adaptor.SetLog(&placed);
            failing();
        };
        EXPECT_EQ(manager.AttachCore(), 0);
        *routine = nullptr;
        EXPECT_EQ(AttachedCore(), nullptr);
        EXPECT_FALSE(TVL::Log::external || adaptor.IsHoldingUndo());
        EXPECT_TRUE(world.Session().UndoLabels().empty());
    }
    EXPECT_EQ(TimesTraced("Exception out of attach: no mood\n"), 1U) << Trace();
}

// Neither a half of the state nor none takes the place of what the file has.
TEST_F(Thrown, RefusesTheSave) {
    Helper("Hip");
    rig.parts = {"<masternode/>"};
    world.Core().state = XMLNode("<state><take/></state>");
    const std::string path = (world.Folder() / "take.scene").string();
    const auto save = [&] { return world.Session().SaveScene(path).error; };
    ASSERT_EQ(save(), "");
    const std::string whole = ReadFile(path);
    world.Core().onCall = [](const std::string&) { throw 1; };
    for (const char* reason :
         {"the CORE could not give its state", "an owner of nodes could not give its state"}) {
        EXPECT_NE(save(), "");
        EXPECT_EQ(TimesTraced(reason), 1U);
        world.Core().onCall = nullptr;
        rig.onAsked = nullptr;
        EXPECT_EQ(ReadFile(path), whole);
        EXPECT_EQ(save(), "");
        rig.onAsked = [] { throw 1; };
    }
    rig.onAsked = nullptr;
    world.Core().state = XMLNode();
    EXPECT_EQ(save() + save(), "");
    EXPECT_EQ(TimesTraced("CORE has nodes, and its state is suddenly empty"), 1U);
}

}  // namespace
