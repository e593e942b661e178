#include <gtest/gtest.h>

#include "adaptor/trace_file.h"
#include "adaptor/utility_manager.h"
#include "host/interface.h"
#include "resources/resource_ids.h"
#include "tests/support/allocations.h"
#include "tests/support/world.h"

namespace {

using Calls = PuppetCore::Calls;

bool Holds(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

bool IsUnloaded() {
    const CoreLink& link = TheCoreLink();
    return !link.core && !link.coreModule && !puppet::TheStage().isLoaded;
}

TEST(LifeCycle, EachAttachLoadsTheInstalledCoreAnewAndBindsItsOptions) {
    World world;
    UtilityManager& manager = UtilityManager::Get();
    const Calls bound = {"bind 1027", "bind 1030", "option node 1028"};
    EXPECT_EQ(world.Session().KeptUtilities(), 1U);
    EXPECT_EQ(world.Core().TakeCalls(), bound);
    EXPECT_EQ(puppet::TheStage().adaptor, &world.Adaptor());
    EXPECT_TRUE(world.Session().IsUtilityOpen("Tarvo Lumiset Util"));
    ASSERT_TRUE(world.Session().PressButton(StartButton));
    EXPECT_EQ(world.Core().TakeCalls(), (Calls{"show"}));
    EXPECT_EQ(world.Core().shownIn, GetCOREInterface()->GetMAXHWnd());
    EXPECT_TRUE(world.MessageBoxes().empty());

    EXPECT_EQ(manager.DetachCore(), 0);
    EXPECT_EQ(puppet::TheStage().detached, &world.Core());
    EXPECT_TRUE(IsUnloaded());
    for (int times = 0; times < 2; ++times)
        EXPECT_EQ(manager.AttachCore(), 0);
    EXPECT_EQ(world.Core().TakeCalls(), bound);
    EXPECT_EQ(puppet::TheStage().attachCount, 2);
    manager.DetachCore();
    puppet::TheStage().version = 1;
    EXPECT_EQ(manager.AttachCore(), 0);
    EXPECT_TRUE(IsUnloaded());
}

TEST(LifeCycle, ACoreThatCannotBeAttachedIsToldInTheTraceAndByTheButton) {
    const struct {
        WorldSettings settings;
        std::vector<std::string> told;
    } rows[] = {
        {{.core = kNoPuppet}, {"(ERROR): Return value: Unable to load CORE\n"}},
        {{.version = 8109},
         {"(ERROR): \tversion mismatch trying to attach to CORE\n",
          "(ERROR): \tCORE version: 8109\n", "(ERROR): \tAdaptor version: 8108\n"}},
        {{.core = kPuppetWithoutVersion}, {"routine: getVersion\n"}},
        {{.core = kPuppetWithoutAttach}, {"routine: attach\n"}},
        {{.core = kPuppetWithoutDetach}, {"routine: detach\n"}},
        {{.refuses = true}, {}},
    };
    for (const auto& [settings, told] : rows) {
        SCOPED_TRACE(settings.core);
        World world(settings);
        headless::Session& host = world.Session();
        const bool isFound = settings.core != kNoPuppet;
        EXPECT_EQ(host.KeptUtilities(), isFound ? 1U : 0U);
        EXPECT_EQ(IsUnloaded(), !settings.refuses);
        EXPECT_EQ(puppet::TheStage().attachCount, settings.refuses ? 1 : 0);
        for (const std::string& line : told)
            EXPECT_TRUE(Holds(world.Trace(), line)) << line;

        // The button answers by hand or at once.
        EXPECT_EQ(host.IsUtilityOpen("Tarvo Lumiset Util"), isFound);
        ASSERT_TRUE(isFound || host.OpenUtility("Tarvo Lumiset Util"));
        ASSERT_TRUE(host.PressButton(StartButton));
        ASSERT_EQ(world.MessageBoxes().size(), 1U);
        const headless::MessageBoxText& box = world.MessageBoxes()[0];
        EXPECT_EQ(box.text,
                  "Unable to bind Core routines. Tarvo Lumiset is unable to start.\nPlease "
                  "re-install the software and contact Tarvo Works in case the problem persists.");
        EXPECT_TRUE(box.caption == "Tarvo Lumiset" && box.style == 16) << box.caption << box.style;

        const std::size_t before = Allocations();
        for (TimeValue t = 2; t < 100; ++t)
            host.SetTime(t);
        EXPECT_EQ(Allocations(), before) << "for a change of time that nobody hears of";
    }
}

TEST(LifeCycle, ARefusedCoreStaysLoadedAndNoneIsTakenDownInsideItsOwnRoutines) {
    World world({.refuses = true});
    puppet::TheStage().core = &world.Core();
    puppet::TheStage().onAttach = [] {
        UtilityManager::Get().AttachCore();
        UtilityManager::Get().DetachCore();
    };
    world.Core().onLeave = [] { UtilityManager::Get().DetachCore(); };
    EXPECT_EQ(UtilityManager::Get().AttachCore(), 0);
    EXPECT_EQ(puppet::TheStage().attachCount, 2);
    EXPECT_EQ(AttachedCore(), &world.Core());
    UtilityManager::Get().DetachCore();
    EXPECT_EQ(puppet::TheStage().detachCount, 1);
    EXPECT_TRUE(IsUnloaded());
}

TEST(LifeCycle, ShuttingDownTakesTheCoreDownAndMakesTheDataFolder) {
    for (const bool hasDocuments : {false, true}) {
        World world({.hasDocuments = hasDocuments});
        world.ShutDown();
        EXPECT_EQ(puppet::TheStage().detachCount, 1);
        EXPECT_TRUE(IsUnloaded());
        EXPECT_EQ(std::filesystem::is_directory(world.Folder() /
                                                "Tarvo Works/Lumiset/data/adaptor_3dsmax9"),
                  hasDocuments);
        const std::string trace = world.Trace();
        const std::string own = trace.substr(trace.rfind("Register Code"));  // of this world
        EXPECT_NE(Holds(own, "(ERROR): \tUnable to find my documents path\n"), hasDocuments);
    }
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
