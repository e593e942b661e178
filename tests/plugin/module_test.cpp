#include <gtest/gtest.h>

#include "headless/primitives.h"
#include "headless/scene_view.h"
#include "headless/session.h"
#include "host/interface.h"
#include "platform/common/resources.h"
#include "platform/modules.h"
#include "platform/process.h"
#include "platform/testing.h"
#include "resources/resource_ids.h"
#include "tests/support/folder/temporary_folder.h"
#include "tests/support/puppet/stage.h"
#include "tests/support/puppet_core.h"

namespace {

// The plug-in as a host knows it: a library with four routines and two dialogs.
class Module : public testing::Test {
  protected:
    ~Module() override {
        FreeLibrary(library);
        EXPECT_EQ(headless::TakeCensus().controlModules, controlModulesBefore + 1);
    }

    template <class Routine>
    Routine* Find(const char* name) {
        return platform::Routine<Routine>(library, name);
    }

    std::size_t controlModulesBefore = headless::TakeCensus().controlModules;
    headless::Session session;  // before the library, whose entry point calls the host
    HMODULE library = LoadLibraryA(PLUGIN_MODULE);
};

TEST_F(Module, IntroducesItselfAndItsClasses) {
    EXPECT_STREQ(Find<LibDescriptionRoutine>("LibDescription")(), "Tarvo Lumiset v2.5");
    EXPECT_EQ(Find<LibNumberClassesRoutine>("LibNumberClasses")(), 5);
    EXPECT_EQ(Find<LibVersionRoutine>("LibVersion")(), 589829376U);
    EXPECT_EQ(Find<void()>("DllMain"), nullptr);

    auto* const classDesc = Find<LibClassDescRoutine>("LibClassDesc");
    std::ostringstream classes;
    classes << std::hex;
    for (int index = -1; index <= 5; ++index) {
        ClassDesc* const desc = classDesc(index);
        ASSERT_EQ(desc != nullptr, index >= 0 && index < 5);
        EXPECT_EQ(classDesc(index), desc);
        if (!desc) continue;
        classes << desc->IsPublic() << ' ' << desc->SuperClassID() << ' ' << desc->ClassID().partA
                << ' ' << desc->ClassID().partB << ' ' << desc->Category() << ", "
                << desc->ClassName() << '\n';
    }
    EXPECT_EQ(classes.str(),
              "1 10e0 5c9473f4 7d2e4160 Tarvo Works Group, Tarvo Lumiset\n"
              "1 1020 7f8230ef 2909190a Tarvo Works Group, Tarvo Lumiset Util\n"
              "0 50 22e322a5 3010606f Tarvo Works Group, Tarvo Lumiset helper object\n"
              "1 9008 708b15a4 2afa7c85 Tarvo Works Group, Tarvo Quillmark MoCap control\n"
              "1 9003 2ade2e71 21430fa0 Tarvo Works Group, Tarvo Quillmark MoCap scalar control\n");
    EXPECT_EQ(classDesc(0)->Create(), classDesc(0)->Create());
}

TEST_F(Module, HoldsTwoDialogsOfOneButtonEach) {
    constexpr DWORD kButton = 0x50010000;  // of the system's pushbuttons: a visible child, tab stop
    const std::pair<int, platform::DialogTemplate> expected[] = {
        {PanelDialog,
         {{"#32770", "", 0x40000040, 0, 0, 0, 108, 30},
          "MS Shell Dlg",
          8,
          {{"Button", "Start Lumiset", kButton, TVL::kStartButton, 7, 7, 94, 16}}}},
        {ConvertDialog,
         {{"#32770", "", 0x50000040, 0, 0, 0, 108, 41},
          "MS Sans Serif",
          8,
          {{"Button", "Convert to PRS controller", kButton, ConvertButton, 14, 7, 82, 14}}}}};
    for (const auto& [id, dialog] : expected) {
        const HRSRC found = FindResourceA(library, MAKEINTRESOURCEA(id), MAKEINTRESOURCEA(5));
        const auto* const bytes =
            static_cast<const std::byte*>(LockResource(LoadResource(library, found)));
        EXPECT_EQ(platform::ReadDialog({bytes, SizeofResource(library, found)}), dialog) << id;
    }
}

// A host with the plug-in and a Core, each a library that was loaded. All of it comes through the
// exports and the entry point, and at the end only the UtilityManager is left.
class LoadedPlugin : public testing::Test {
  protected:
    LoadedPlugin() {
        PlaceRegistry(folder, {PUPPET_CORES "/whole", ""});
        platform::SetVariable("LUMISET_TRACE", folder.File("trace.txt"));
        stage.core = &core;
        stage.onDetach = [this] { core.Leave(); };
        EXPECT_EQ(session->LoadPlugin(PLUGIN_MODULE), "");
        session->Start();
        EXPECT_EQ(stage.attachCount, 1);
        stage.adaptor->SetLog(&log);
    }

    ~LoadedPlugin() override {
        stage.adaptor->ClearLog();
        session.reset();
        EXPECT_EQ(stage.detachCount, 1);
        EXPECT_FALSE(stage.isLoaded);
        EXPECT_EQ(platform::CountLoadedModules(), modulesBefore);
        EXPECT_EQ(headless::TakeCensus().heapBlocks, blocksBefore + 1);
        EXPECT_EQ(headless::TakeCensus().objectCount, 0U);
        const std::string trace = ReadFile(folder.File("trace.txt"));
        EXPECT_NE(trace.find("Shutting down adaptor\n"), std::string::npos);
        EXPECT_EQ(trace.find("left something behind"), std::string::npos);
        stage = {};
    }

    bool HasLogged(const std::string& text) {
        return log.buffer.str().find(text) != std::string::npos;
    }

    TemporaryFolder folder;
    std::size_t modulesBefore = platform::CountLoadedModules();
    std::size_t blocksBefore = headless::TakeCensus().heapBlocks;
    PuppetCore core;
    puppet::Stage& stage = puppet::TheStage();
    TVL::Log log;
    std::optional<headless::Session> session{std::in_place};
};

// Program, plug-in and Core compile the same classes. What the Core places in the plug-in must not
// turn up as anybody else's.
TEST_F(LoadedPlugin, ShowsTheCoreAndHasAPanelALogAndARegistryOfItsOwn) {
    EXPECT_TRUE(session->PressButton(TVL::kStartButton));
    EXPECT_EQ(core.TakeCalls().back(), "show");
    const XMLNode panel = stage.adaptor->GetOptionsPanel();
    std::string rows = panel.name;
    for (const auto& row : panel.Child("body").Child("list").Child("body").children)
        rows += ' ' + row->name + ' ' + row->Child("id").Text() + row->Child("value").Text();
    EXPECT_EQ(rows, "group check 1030false check 1027true button 1028");

    TVL::ErrorCode registry;
    stage.adaptor->SetErrorCode(&registry);
    const std::int32_t mismatch = stage.adaptor->EndUndoGroup();
    EXPECT_TRUE(HasLogged("undo group mismatch") && registry.HasValue(mismatch));
    EXPECT_EQ((std::set{&log, stage.log(), TVL::Log::GetInstance()}).size(), 3U);
    EXPECT_EQ((std::set{&registry, stage.errorCode(), TVL::ErrorCode::GetInstance()}).size(), 3U);
    stage.adaptor->ClearErrorCode();
}

// The host throws out of its library, through the plug-in's, which catches it.
TEST_F(LoadedPlugin, CatchesWhatTheHostThrowsAtADamagedSceneAndGoesOn) {
    GetCOREInterface()->CreateObjectNode(headless::NewSphere(1, 8))->SetName("Ball");
    const std::string sound = folder.File("sound.scene");
    ASSERT_EQ(session->SaveScene(sound).error, "");
    const std::string bytes = ReadFile(sound);
    const std::string damaged = folder.Write("damaged.scene", bytes.substr(0, bytes.size() - 1));
    stage.adaptor->BeginUndoGroup("merging");
    EXPECT_TRUE(stage.adaptor->MergeModels(damaged).empty());
    EXPECT_EQ(stage.adaptor->EndUndoGroup(), 0);
    EXPECT_TRUE(HasLogged("possible corrupt scene file: " + damaged + '\n'));
    EXPECT_EQ(log.indent, -1) << "a scope is still open";
    EXPECT_EQ(headless::Nodes().size(), 1U);
    EXPECT_TRUE(std::filesystem::remove(damaged)) << "the host has not closed it";
    for (TVL::CNode* node : stage.adaptor->MergeModels(sound))
        static_cast<TVL::CoreNode*>(node)->Destroy();
    EXPECT_EQ(headless::Nodes().size(), 2U);
}

}  // namespace
