#include <gtest/gtest.h>

#include "adaptor/trace_file.h"
#include "adaptor/utility_manager.h"
#include "host/interface.h"
#include "resources/resource_ids.h"
#include "tests/support/world.h"

namespace {

using testing::Test;
using Calls = PuppetCore::Calls;

bool Holds(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

bool IsUnloaded() {
    const CoreLink& link = TheCoreLink();
    return !link.core && !link.coreModule && !puppet::TheStage().isLoaded;
}

constexpr const char* kNoCoreText =
    "Unable to bind Core routines. Tarvo Lumiset is unable to start.\n"
    "Please re-install the software and contact Tarvo Works in case the problem persists.";

// The button answers by hand or at once, whatever became of the Core.
void ExpectTheMessageBox(World& world) {
    if (!world.Session().IsUtilityOpen("Tarvo Lumiset Util")) {
        ASSERT_TRUE(world.Session().OpenUtility("Tarvo Lumiset Util"));
    }
    ASSERT_TRUE(world.Session().PressButton(StartButton));
    ASSERT_EQ(world.MessageBoxes().size(), 1U);
    EXPECT_EQ(world.MessageBoxes()[0].text, kNoCoreText);
    EXPECT_EQ(world.MessageBoxes()[0].caption, "Tarvo Lumiset");
    EXPECT_EQ(world.MessageBoxes()[0].style, 16U);
}

TEST(LifeCycle, AttachesTheInstalledCoreAndBindsItsOptions) {
    World world;
    EXPECT_EQ(world.Session().KeptUtilities(), 1U);
    EXPECT_EQ(world.Core().TakeCalls(), (Calls{"bind 1027", "bind 1030", "option node 1028"}));
    EXPECT_EQ(puppet::TheStage().adaptor, &world.Adaptor());
    EXPECT_TRUE(world.Session().IsUtilityOpen("Tarvo Lumiset Util"));

    ASSERT_TRUE(world.Session().PressButton(StartButton));
    EXPECT_EQ(world.Core().TakeCalls(), (Calls{"show"}));
    EXPECT_EQ(world.Core().shownIn, GetCOREInterface()->GetMAXHWnd());
    EXPECT_TRUE(world.MessageBoxes().empty());
}

TEST(LifeCycle, WithoutALibraryTheHostDoesNotKeepThePlugin) {
    World world({.core = kNoPuppet});
    EXPECT_EQ(world.Session().KeptUtilities(), 0U);
    EXPECT_TRUE(IsUnloaded());
    EXPECT_TRUE(Holds(world.Trace(), "(ERROR): Return value: Unable to load CORE\n"));
    EXPECT_FALSE(world.Session().IsUtilityOpen("Tarvo Lumiset Util"));
    ExpectTheMessageBox(world);
}

TEST(LifeCycle, ACoreOfAnotherVersionIsReportedAndUnloaded) {
    World world({.version = 8109});
    EXPECT_EQ(world.Session().KeptUtilities(), 1U);
    EXPECT_TRUE(IsUnloaded());
    EXPECT_EQ(puppet::TheStage().attachCount, 0);
    EXPECT_TRUE(Holds(world.Trace(), "(ERROR): \tversion mismatch trying to attach to CORE\n"));
    EXPECT_TRUE(Holds(world.Trace(), "(ERROR): \tCORE version: 8109\n"));
    EXPECT_TRUE(Holds(world.Trace(), "(ERROR): \tAdaptor version: 8108\n"));
    ExpectTheMessageBox(world);
}

TEST(LifeCycle, ACoreThatLacksARoutineIsReportedAndUnloaded) {
    const std::pair<const char*, const char*> cases[] = {{kPuppetWithoutVersion, "getVersion"},
                                                         {kPuppetWithoutAttach, "attach"},
                                                         {kPuppetWithoutDetach, "detach"}};
    for (const auto& [core, routine] : cases) {
        SCOPED_TRACE(core);
        World world({.core = core});
        EXPECT_EQ(world.Session().KeptUtilities(), 1U);
        EXPECT_TRUE(IsUnloaded());
        EXPECT_EQ(puppet::TheStage().attachCount, 0);
        EXPECT_TRUE(Holds(world.Trace(), std::string("routine: ") + routine + "\n"));
        ExpectTheMessageBox(world);
    }
}

TEST(LifeCycle, ACoreThatRefusesStaysLoadedUntilTheNextAttach) {
    World world({.refuses = true});
    EXPECT_TRUE(puppet::TheStage().isLoaded);
    EXPECT_TRUE(TheCoreLink().coreModule);
    EXPECT_FALSE(TheCoreLink().core);
    ExpectTheMessageBox(world);

    puppet::TheStage().core = &world.Core();
    EXPECT_EQ(UtilityManager::Get().AttachCore(), 0);
    EXPECT_EQ(puppet::TheStage().attachCount, 2);
    EXPECT_EQ(AttachedCore(), &world.Core());
    UtilityManager::Get().DetachCore();
    EXPECT_TRUE(IsUnloaded());
}

TEST(LifeCycle, AttachingAgainLoadsAnewAndComparesVersionsAnew) {
    World world;
    world.Core().TakeCalls();
    UtilityManager& manager = UtilityManager::Get();
    EXPECT_EQ(manager.DetachCore(), 0);
    EXPECT_EQ(puppet::TheStage().detached, &world.Core());
    EXPECT_TRUE(IsUnloaded());

    EXPECT_EQ(manager.AttachCore(), 0);
    EXPECT_EQ(world.Core().TakeCalls(), (Calls{"bind 1027", "bind 1030", "option node 1028"}));
    EXPECT_EQ(manager.AttachCore(), 0);
    EXPECT_EQ(puppet::TheStage().attachCount, 2);

    manager.DetachCore();
    puppet::TheStage().version = 1;
    EXPECT_EQ(manager.AttachCore(), 0);
    EXPECT_TRUE(IsUnloaded());
}

TEST(LifeCycle, ACoreCannotBeTakenDownFromInsideItsOwnRoutines) {
    World world({.refuses = true});
    puppet::TheStage().core = &world.Core();
    puppet::TheStage().onAttach = [] {
        UtilityManager::Get().AttachCore();
        UtilityManager::Get().DetachCore();
    };
    world.Core().onLeave = [] { UtilityManager::Get().DetachCore(); };
    UtilityManager::Get().AttachCore();
    EXPECT_EQ(AttachedCore(), &world.Core());
    UtilityManager::Get().DetachCore();
    EXPECT_EQ(puppet::TheStage().detachCount, 1);
    EXPECT_TRUE(IsUnloaded());
}

TEST(LifeCycle, ShuttingDownDestroysTheSingletonsTheAdaptorFirst) {
    World world;
    world.ShutDown();
    EXPECT_EQ(puppet::TheStage().detachCount, 1);
    EXPECT_TRUE(IsUnloaded());
    EXPECT_TRUE(
        std::filesystem::is_directory(world.Folder() / "Tarvo Works/Lumiset/data/adaptor_3dsmax9"));
    const std::string trace = world.Trace();
    EXPECT_FALSE(Holds(trace.substr(trace.rfind("Register Code")), "left something behind"));
}

TEST(LifeCycle, WithoutADocumentsFolderShutdownSaysSo) {
    World world({.hasDocuments = false});
    world.ShutDown();
    EXPECT_TRUE(Holds(world.Trace(), "(ERROR): \tUnable to find my documents path\n"));
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

}  // namespace
