#include "adaptor/max_adaptor_interface.h"
#include "core_link/trace_file.h"
#include "host/notify.h"
#include "platform/testing.h"
#include "tests/adaptor/attach_panel.h"
#include "tests/nodes/node_test.h"
#include "tests/support/allocations.h"

namespace {

bool Holds(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

// The end of the trace, where a log that outlived the last world has that in it, too.
std::string OwnTrace(const World& world) {
    const std::string trace = world.Trace();
    return trace.substr(trace.rfind("Register Code"));
}

bool IsUnloaded() {
    const CoreLink& link = TheCoreLink();
    return !link.core && !link.coreModule && !puppet::TheStage().isLoaded;
}

TEST(LifeCycle, EachAttachLoadsTheInstalledCoreAnewAndBindsItsOptions) {
    World world;
    UtilityManager& manager = UtilityManager::Get();
    puppet::Stage& stage = puppet::TheStage();
    EXPECT_EQ(world.Session().KeptUtilities(), 1U);
    EXPECT_TRUE(world.Session().IsUtilityOpen(TVL::kPanelUtility));
    ASSERT_TRUE(world.Session().PressButton(TVL::kStartButton));
    Names calls = {"bind 1027", "bind 1030", "option node 1028", "show"};
    EXPECT_EQ(world.Core().TakeCalls(), calls);
    EXPECT_EQ(world.Core().shownIn, GetCOREInterface()->GetMAXHWnd());

    EXPECT_EQ(manager.DetachCore(), 0);
    EXPECT_EQ(stage.detached, &world.Core());
    EXPECT_TRUE(IsUnloaded());
    for (int times = 0; times < 2; ++times)
        EXPECT_EQ(manager.AttachCore(), 0);
    calls.pop_back();
    EXPECT_EQ(world.Core().TakeCalls(), calls);
    EXPECT_EQ(stage.attachCount, 2);
    manager.DetachCore();
    stage.version = 1;
    EXPECT_EQ(manager.AttachCore(), 0);
    EXPECT_TRUE(IsUnloaded());
}

TEST(LifeCycle, ACoreThatCannotBeAttachedIsToldInTheTraceAndByTheButton) {
    const std::pair<WorldSettings, Names> rows[] = {
        {{.core = ""}, {"(ERROR): Return value: Unable to load CORE\n"}},
        {{.version = 8109},
         {"(ERROR): \tversion mismatch trying to attach to CORE\n",
          "(ERROR): \tCORE version: 8109\n", "(ERROR): \tAdaptor version: 8108\n"}},
        {{.core = "without_version"}, {"routine: getVersion\n"}},
        {{.core = "without_attach"}, {"routine: attach\n"}},
        {{.core = "without_detach"}, {"routine: detach\n"}},
        {{.refuses = true}, {}},
    };
    for (const auto& [settings, told] : rows) {
        SCOPED_TRACE(settings.core);
        World world(settings);
        headless::Session& host = world.Session();
        const bool isFound = settings.core != "";
        EXPECT_EQ(host.KeptUtilities(), isFound ? 1U : 0U);
        EXPECT_EQ(IsUnloaded(), !settings.refuses);
        EXPECT_EQ(puppet::TheStage().attachCount, settings.refuses ? 1 : 0);
        for (const std::string& line : told)
            EXPECT_TRUE(Holds(world.Trace(), line)) << line;

        // The utility is opened by hand or at once.
        EXPECT_EQ(host.IsUtilityOpen(TVL::kPanelUtility), isFound);
        ASSERT_TRUE(isFound || host.OpenUtility(TVL::kPanelUtility));
        ASSERT_TRUE(host.PressButton(TVL::kStartButton));
        ASSERT_EQ(world.MessageBoxes().size(), 1U);
        const headless::MessageBoxText& box = world.MessageBoxes()[0];
        EXPECT_EQ(box.caption + std::to_string(box.style) + box.text,
                  "Tarvo Lumiset16Unable to bind Core routines. Tarvo Lumiset is unable to start.\n"
                  "Please re-install the software and contact Tarvo Works in case the problem "
                  "persists.");

        const std::size_t before = Allocations();
        for (TimeValue t = 2; t < 100; ++t)
            host.SetTime(t);
        EXPECT_EQ(Allocations(), before) << "for a change of time that nobody hears of";
    }
}

// A refused one stays loaded, and the host's shutdown waits until the routine has returned.
TEST(LifeCycle, NoCoreIsTakenDownInsideItsOwnRoutines) {
    UtilityManager& manager = UtilityManager::Get();
    puppet::Stage& stage = puppet::TheStage();
    for (const auto& [isShutDown, isLeaving] :
         {std::pair(false, false), {false, true}, {true, false}, {true, true}}) {
        World world({.refuses = !isLeaving});
        stage.core = &world.Core();
        (isLeaving ? world.Core().onLeave : stage.onAttach) = [&, shutsDown = isShutDown] {
            if (shutsDown) world.Session().Announce(NOTIFY_SYSTEM_SHUTDOWN);
            manager.AttachCore();
            manager.DetachCore();
            EXPECT_TRUE(stage.isLoaded && MaxAdaptorInterface::instance);
        };
        EXPECT_EQ(isLeaving ? manager.DetachCore() : manager.AttachCore(), 0);
        EXPECT_EQ(stage.attachCount, isLeaving ? 1 : 2);
        EXPECT_EQ(AttachedCore(), isLeaving || isShutDown ? nullptr : &world.Core());
        EXPECT_EQ(IsUnloaded(), isLeaving || isShutDown);
        EXPECT_EQ(stage.detachCount, isLeaving || isShutDown ? 1 : 0);
        EXPECT_EQ(MaxAdaptorInterface::instance == nullptr, isShutDown);
    }
}

TEST(LifeCycle, ShuttingDownTakesTheCoreDownAndMakesTheDataFolder) {
    for (const bool hasDocuments : {false, true}) {
        World world({.hasDocuments = hasDocuments});
        world.Adaptor().RestoreFocus();  // which was never taken
        world.ShutDown();
        EXPECT_FALSE(Holds(OwnTrace(world), "left something behind"));
        EXPECT_EQ(puppet::TheStage().detachCount, 1);
        EXPECT_TRUE(IsUnloaded());
        EXPECT_EQ(std::filesystem::is_directory(world.Folder() /
                                                "Tarvo Works/Lumiset/data/adaptor_3dsmax9"),
                  hasDocuments);
        EXPECT_NE(Holds(OwnTrace(world), "(ERROR): \tUnable to find my documents path\n"),
                  hasDocuments);
    }
}

// A Core that leaves all its things behind and is gone from memory; it is attached or refuses after
// that.
TEST(LifeCycle, ACoreThatIsGoneLeavesNothingThatCanCallIntoItsFreedLibrary) {
    for (const bool isAttached : {false, true}) {
        World world({.refuses = true});
        headless::Session& host = world.Session();
        UtilityManager& manager = UtilityManager::Get();
        puppet::Stage& stage = puppet::TheStage();
        stage.core = isAttached ? &world.Core() : nullptr;
        stage.onAttach = [&] { world.Core().otherButton = stage.litter(*stage.adaptor); };
        manager.AttachCore();
        stage.onAttach = nullptr;
        world.Core().otherButton = nullptr;
        EXPECT_TRUE(theHold.Holding() == isAttached && TVL::Log::external == isAttached);
        EXPECT_EQ(AdaptorNodes().nodes.size(), isAttached ? 1U : 0U);

        manager.DetachCore();
        EXPECT_FALSE(stage.isLoaded || theHold.Holding());
        EXPECT_TRUE(host.AnimateButtonEnabled() && host.AcceleratorsEnabled());
        EXPECT_FALSE(TVL::Log::external || TVL::ErrorCode::external);

        // The work stays, as one step that goes and comes.
        ASSERT_EQ(host.UndoLabels().front(), "outer");
        ASSERT_TRUE(host.Undo());
        EXPECT_EQ(headless::FindNode("Litter_left"), nullptr);
        ASSERT_TRUE(host.Redo());
        EXPECT_NE(headless::FindNode("Litter_left"), nullptr);
        host.Select({"Litter_left"});
        host.DeleteSelected();
        ASSERT_TRUE(host.Undo());

        // And another Core finds an adaptor as new.
        stage.core = &world.Core();
        EXPECT_EQ(manager.AttachCore(), 0);
        EXPECT_FALSE(world.Adaptor().IsHoldingUndo());
        ASSERT_TRUE(host.Undo() && host.Redo());
        world.ShutDown();
        const std::string trace = OwnTrace(world);
        for (const char* line :
             {"(WARNING): \tCORE left something behind in the adaptor\n", "\tlog: 1\n",
              "\terror registry: 1\n", "\tnodes: 1\n", "\tsnapshot nodes: ", "\trecording: 1\n",
              "\tundo groups: 2\n", "\tkeyboard focus: 1\n"})
            EXPECT_TRUE(Holds(trace, line)) << line << trace;
        EXPECT_NE(Holds(trace, "\tundo chunks: 1\n"), isAttached) << trace;
        EXPECT_EQ(trace.find("left something"), trace.rfind("left something")) << trace;
    }
}

struct LoggingChunk final : TVL::CUndo {
    void Undo(bool) override { TVL::Log(TVL::Log::kNotice).Write("heard undo"); }
    void Redo() override { throw std::runtime_error("no redo"); }
};

// Each time once, also when others have written it before.
TEST(LifeCycle, TheTraceOnDiskHasAfterEachEventWhatCameOfIt) {
    World world;
    headless::Session& host = world.Session();
    const auto log = [](const std::string& what) {
        TVL::Log(TVL::Log::kNotice).Write("heard " + what);
    };
    world.Core().onCall = log;
    world.Core().onOptionAsked = [](int) { throw std::runtime_error("no option"); };
    world.Adaptor().BeginUndoGroup("group");
    world.Adaptor().AddUndoChunk(new LoggingChunk);
    world.Adaptor().EndUndoGroup();
    const std::pair<std::function<void()>, std::string> rows[] = {
        {[&] {
             host.SetTime(4800);  // which writes nothing by itself
             EXPECT_FALSE(Holds(world.Trace(), "heard time 1\n"));
             world.Adaptor().SetLog(nullptr);
         },
         "heard time 1\n"},
        {[&] { host.PressButton(TVL::kStartButton); }, "heard show\n"},
        {[] { CoreOption(TVL::kDynamicMeshes, true); }, "out of GetOptionValue: no option\n"},
        {[&] { host.Undo(); }, "heard undo\n"},
        {[&] { host.Redo(); }, "out of Redo of an undo chunk: no redo\n"},
        {[&] { host.NewScene(); }, "heard reset\n"},
        {[&] { UtilityManager::Get().DetachCore(); }, "Adaptor is detaching core\n"},
    };
    for (const auto& [event, line] : rows) {
        EXPECT_FALSE(Holds(world.Trace(), line)) << line;
        event();
        EXPECT_TRUE(Holds(world.Trace(), line)) << line;
    }
    for (const auto& [event, line] : rows)
        EXPECT_EQ(world.Trace().find(line), world.Trace().rfind(line)) << line;
}

// Its library can be gone by then.
TEST(LifeCycle, TheEndOfTheModuleReadsNoLogOfTheCores) {
    World world;
    TVL::Log placed;
    world.Adaptor().SetLog(&placed);
    TVL::Log(TVL::Log::kError).Write("in the log of the Core");
    EndTrace();
    EXPECT_FALSE(Holds(world.Trace(), "in the log of the Core"));
    world.Adaptor().ClearLog();
    TVL::Log(TVL::Log::kError).Write("in our own");
    EndTrace();
    EXPECT_TRUE(Holds(world.Trace(), "in our own"));
}

// The panel ---------------------------------------------------------------------------------------

TEST(Panel, TheControlDoesWhatItSaysAndAttachesForAnyTextButDetach) {
    World world({.core = ""});
    PuppetCore& core = world.Core();
    const AttachPanel panel;
    panel.Press();
    EXPECT_EQ(panel.Text(), "Attach");
    EXPECT_TRUE(IsWindowVisible(panel.Control()));
    world.Install("whole");
    theHold.Begin();
    GetCOREInterface()->CreateObjectNode(headless::NewSphere(1, 8));
    theHold.Accept("sphere");
    for (const char* text : {"Attach", "detach", "Detach ", ""}) {
        SetWindowTextA(panel.Control(), text);
        panel.Press();
        EXPECT_EQ(panel.Text(), "Detach");
        EXPECT_EQ(puppet::TheStage().attachCount, 1);
    }
    EXPECT_TRUE(world.Session().UndoLabels().empty());
    Names calls = core.TakeCalls();
    calls.resize(4);  // each press gathers the state
    EXPECT_EQ(calls, (Names{"bind 1027", "bind 1030", "option node 1028", "set state <TVL/>"}));
    world.Session().SetTime(4800);
    EXPECT_EQ(core.TakeCalls(), Names{"time 1"});
    EXPECT_EQ(AttachPanel().Text(), "Detach");
    UtilityManager::Get().DetachCore();
    EXPECT_EQ(panel.Text(), "Attach");
    UtilityManager::Get().AttachCore();
    EXPECT_EQ(panel.Text(), "Detach");

    // Stop is for good, and no attach after it makes the host tell of the time twice.
    UtilityManager::Get().Stop();
    panel.Press();
    EXPECT_FALSE(AttachedCore());
    EXPECT_EQ(AttachPanel().Text(), "Attach");
    panel.Press();
    core.TakeCalls();
    world.Session().SetTime(0);
    world.Session().NewScene();
    EXPECT_EQ(core.TakeCalls(), Names{"time 0"});
    panel.Press();
}

TEST(Panel, TheUtilityOpensOnePageAndForgetsIt) {
    World world;
    world.Session().CloseUtility();
    EXPECT_EQ(UtilityManager::Get().panelWindow, nullptr);
    const std::size_t windows = platform::CountWindows();
    auto* const utility = new TarvoUtilityObj;
    for (int times = 0; times < 2; ++times)
        utility->BeginEditParams(GetCOREInterface(), nullptr);
    const HWND page = UtilityManager::Get().panelWindow;
    EXPECT_TRUE(IsWindow(page));
    for (int times = 0; times < 2; ++times) {
        UtilityManager::Get().panelWindow = page;
        utility->EndEditParams(GetCOREInterface(), nullptr);
        EXPECT_EQ(UtilityManager::Get().panelWindow, nullptr);
        EXPECT_EQ(platform::CountWindows(), windows);
    }
    utility->DeleteThis();
}

}  // namespace
