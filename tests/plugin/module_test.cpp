#include <gtest/gtest.h>

#include <string>

#include "headless/scene_view.h"
#include "headless/session.h"
#include "host/class_desc.h"
#include "host/interface.h"
#include "platform/environment.h"
#include "platform/routine.h"
#include "platform/testing.h"
#include "platform/win32.h"
#include "support/folder/surroundings.h"
#include "support/puppet/stage.h"
#include "support/puppet_core.h"

namespace {

// The plug-in as a host knows it: a library with four routines.
class Module : public testing::Test {
  protected:
    Module() : library_(LoadLibraryA(PLUGIN_MODULE)) {}
    ~Module() override { FreeLibrary(library_); }

    template <class Routine>
    Routine* Find(const char* name) {
        return platform::Routine<Routine>(library_, name);
    }

  private:
    headless::Session session_;  // before the library, whose entry point calls the host
    HMODULE library_;
};

TEST_F(Module, IntroducesItself) {
    EXPECT_STREQ(Find<LibDescriptionRoutine>("LibDescription")(), "Tarvo Lumiset v2.5");
    EXPECT_EQ(Find<LibNumberClassesRoutine>("LibNumberClasses")(), 5);
    EXPECT_EQ(Find<LibVersionRoutine>("LibVersion")(), 589829376U);
    EXPECT_EQ(Find<void()>("DllMain"), nullptr);
}

TEST_F(Module, DescribesItsClasses) {
    struct Row {
        int isPublic;
        const char* name;
        SClass_ID superClass;
        Class_ID id;
    };
    const Row rows[] = {
        {1, "Tarvo Lumiset", 0x10E0, {0x5C9473F4, 0x7D2E4160}},
        {1, "Tarvo Lumiset Util", 0x1020, {0x7F8230EF, 0x2909190A}},
        {0, "Tarvo Lumiset helper object", 0x50, {0x22E322A5, 0x3010606F}},
        {1, "Tarvo Quillmark MoCap control", 0x9008, {0x708B15A4, 0x2AFA7C85}},
        {1, "Tarvo Quillmark MoCap scalar control", 0x9003, {0x2ADE2E71, 0x21430FA0}},
    };
    auto* const classDesc = Find<LibClassDescRoutine>("LibClassDesc");
    for (int index = 0; index < 5; ++index) {
        ClassDesc* const descriptor = classDesc(index);
        ASSERT_NE(descriptor, nullptr);
        const Row& row = rows[index];
        EXPECT_EQ(descriptor->IsPublic(), row.isPublic);
        EXPECT_STREQ(descriptor->ClassName(), row.name);
        EXPECT_EQ(descriptor->SuperClassID(), row.superClass);
        EXPECT_EQ(descriptor->ClassID(), row.id);
        EXPECT_STREQ(descriptor->Category(), "Tarvo Works Group");
        EXPECT_EQ(classDesc(index), descriptor);
    }
    EXPECT_EQ(classDesc(5), nullptr);
    EXPECT_EQ(classDesc(-1), nullptr);
    EXPECT_EQ(classDesc(0)->Create(), classDesc(0)->Create());
}

// Everything through the loader, the exports and the entry point, and all of it gone again.
TEST(LoadedPlugin, AttachesACoreAndLeavesOnlyTheUtilityManager) {
    const TemporaryFolder folder;
    PlaceRegistry(folder, {PUPPET_CORES "/whole", ""});
    platform::SetVariable("LUMISET_TRACE", folder.File("trace.txt"));

    PuppetCore core;
    puppet::Stage& stage = puppet::TheStage();
    stage.core = &core;
    stage.onDetach = [&core] { core.Leave(); };
    const std::size_t modules = platform::CountLoadedModules();
    const std::size_t blocks = headless::TakeCensus().heapBlocks;
    {
        headless::Session session;
        ASSERT_EQ(session.LoadPlugin(PLUGIN_MODULE), "");
        session.Start();
        EXPECT_EQ(stage.attachCount, 1);
        EXPECT_TRUE(session.PressButton(1046));
        EXPECT_EQ(core.TakeCalls().back(), "show");
        EXPECT_EQ(stage.adaptor->GetOptionsPanel().name, "group");
    }
    EXPECT_EQ(stage.detachCount, 1);
    EXPECT_FALSE(stage.isLoaded);
    EXPECT_EQ(platform::CountLoadedModules(), modules);
    EXPECT_EQ(headless::TakeCensus().heapBlocks, blocks + 1);
    EXPECT_EQ(headless::TakeCensus().objectCount, 0U);

    const std::string trace = ReadFile(folder.File("trace.txt"));
    EXPECT_NE(trace.find("Shutting down adaptor\n"), std::string::npos);
    EXPECT_EQ(trace.find("left something behind"), std::string::npos);
    stage = {};
}

}  // namespace
