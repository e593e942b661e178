#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "headless/primitives.h"
#include "headless/scene_view.h"
#include "headless/session.h"
#include "host/class_desc.h"
#include "host/interface.h"
#include "platform/common/resources.h"
#include "platform/modules.h"
#include "platform/process.h"
#include "platform/testing.h"
#include "platform/win32.h"
#include "resources/resource_ids.h"
#include "tests/support/folder/surroundings.h"
#include "tests/support/puppet/stage.h"
#include "tests/support/puppet_core.h"
#include "tvl/ids.h"

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

    // What a resource of the library holds.
    std::string Resource(int id, LPCSTR type) const {
        const HRSRC found = FindResourceA(library_, MAKEINTRESOURCEA(id), type);
        const void* const bytes = LockResource(LoadResource(library_, found));
        return {static_cast<const char*>(bytes), SizeofResource(library_, found)};
    }

    std::size_t controlModulesBefore_ = headless::TakeCensus().controlModules;

  private:
    headless::Session session_;  // before the library, whose entry point calls the host
    HMODULE library_;
};

TEST_F(Module, IntroducesItself) {
    EXPECT_EQ(headless::TakeCensus().controlModules, controlModulesBefore_ + 1);
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

TEST_F(Module, HoldsTwoDialogsOfOneButtonEachAndTheOptionPanel) {
    constexpr DWORD kButton = 0x50010000;  // of the system's pushbuttons: a visible child, tab stop
    const std::pair<int, platform::DialogTemplate> expected[] = {
        {PanelDialog,
         {{"#32770", "", 0x40000040, 0, 0, 0, 108, 30},
          "MS Shell Dlg",
          8,
          {{"Button", "Start Lumiset", kButton, StartButton, 7, 7, 94, 16}}}},
        {ConvertDialog,
         {{"#32770", "", 0x50000040, 0, 0, 0, 108, 41},
          "MS Sans Serif",
          8,
          {{"Button", "Convert to PRS controller", kButton, ConvertButton, 14, 7, 82, 14}}}},
    };
    for (const auto& [id, dialog] : expected) {
        const std::string bytes = Resource(id, MAKEINTRESOURCEA(5));
        EXPECT_EQ(platform::ReadDialog(std::as_bytes(std::span(bytes))), dialog) << id;
    }
    const std::string panel = Resource(OptionPanel, "XMLFile");
    EXPECT_TRUE(panel.starts_with("<group>")) << panel;
    std::size_t at = 0;
    for (const int option :
         {TVL::kDynamicMeshes, TVL::kOptimisedControllers, TVL::kConvertAllControllers}) {
        at = panel.find("<id>" + std::to_string(option) + "</id>", at);
        EXPECT_NE(at, std::string::npos) << option;
    }
}

// A host with the plug-in and a Core, each a library that was loaded. All of it comes through the
// exports and the entry point, and at the end only the UtilityManager is left.
class LoadedPlugin : public testing::Test {
  protected:
    LoadedPlugin() {
        PlaceRegistry(folder_, {PUPPET_CORES "/whole", ""});
        platform::SetVariable("LUMISET_TRACE", File("trace.txt"));
        stage.core = &core;
        stage.onDetach = [this] { core.Leave(); };
        EXPECT_EQ(session->LoadPlugin(PLUGIN_MODULE), "");
        session->Start();
        EXPECT_EQ(stage.attachCount, 1);
    }

    ~LoadedPlugin() override {
        session.reset();
        EXPECT_EQ(stage.detachCount, 1);
        EXPECT_FALSE(stage.isLoaded);
        EXPECT_EQ(platform::CountLoadedModules(), modulesBefore_);
        EXPECT_EQ(headless::TakeCensus().heapBlocks, blocksBefore_ + 1);
        EXPECT_EQ(headless::TakeCensus().objectCount, 0U);
        const std::string trace = ReadFile(File("trace.txt"));
        EXPECT_NE(trace.find("Shutting down adaptor\n"), std::string::npos);
        EXPECT_EQ(trace.find("left something behind"), std::string::npos);
        stage = {};
    }

    std::string File(std::string_view name) const { return folder_.File(name); }

  private:
    TemporaryFolder folder_;
    std::size_t modulesBefore_ = platform::CountLoadedModules();
    std::size_t blocksBefore_ = headless::TakeCensus().heapBlocks;

  protected:
    PuppetCore core;
    puppet::Stage& stage = puppet::TheStage();
    std::optional<headless::Session> session{std::in_place};
};

TEST_F(LoadedPlugin, ShowsTheCoreAndGivesItTheOptionPanel) {
    EXPECT_TRUE(session->PressButton(1046));
    EXPECT_EQ(core.TakeCalls().back(), "show");
    EXPECT_EQ(stage.adaptor->GetOptionsPanel().name, "group");
}

// Program, plug-in and Core compile the same classes. What the Core places in the plug-in must not
// turn up as anybody else's.
TEST_F(LoadedPlugin, HasALogAndARegistryOfItsOwnAsEveryModuleHas) {
    TVL::Log log;
    TVL::ErrorCode registry;
    stage.adaptor->SetLog(&log);
    stage.adaptor->SetErrorCode(&registry);
    const std::int32_t mismatch = stage.adaptor->EndUndoGroup();
    EXPECT_NE(log.buffer.str().find("undo group mismatch"), std::string::npos);
    EXPECT_TRUE(registry.HasValue(mismatch));

    EXPECT_EQ((std::set{&log, stage.log(), TVL::Log::GetInstance()}).size(), 3U);
    EXPECT_EQ((std::set{&registry, stage.errorCode(), TVL::ErrorCode::GetInstance()}).size(), 3U);
    stage.adaptor->ClearErrorCode();
    stage.adaptor->ClearLog();
}

// The host throws out of its library, through the plug-in's, which catches it.
TEST_F(LoadedPlugin, CatchesWhatTheHostThrowsAtADamagedSceneAndGoesOn) {
    GetCOREInterface()->CreateObjectNode(headless::NewSphere(1, 8))->SetName("Ball");
    const std::string sound = File("sound.scene");
    ASSERT_EQ(session->SaveScene(sound).error, "");
    const std::string damaged = File("damaged.scene");
    std::filesystem::copy_file(sound, damaged);
    std::filesystem::resize_file(damaged, std::filesystem::file_size(sound) - 1);
    session->Select({"Ball"});
    const std::uint64_t before = headless::SceneDigest();
    TVL::Log log;
    stage.adaptor->SetLog(&log);

    for (int times = 0; times < 3; ++times) {
        log.buffer.str("");
        stage.adaptor->BeginUndoGroup("merging");
        EXPECT_TRUE(stage.adaptor->MergeModels(damaged).empty());
        EXPECT_EQ(stage.adaptor->EndUndoGroup(), 0);
        EXPECT_NE(log.buffer.str().find("possible corrupt scene file: " + damaged + '\n'),
                  std::string::npos);
        EXPECT_EQ(log.indent, -1) << "a scope is still open";
        EXPECT_EQ(headless::SceneDigest(), before);
    }
    EXPECT_TRUE(std::filesystem::remove(damaged)) << "the host has not closed it";

    const std::vector<TVL::CNode*> merged = stage.adaptor->MergeModels(sound);
    ASSERT_EQ(merged.size(), 1U);
    static_cast<TVL::CoreNode*>(merged.front())->Destroy();
    EXPECT_EQ(headless::Nodes().size(), 2U);
    stage.adaptor->ClearLog();
}

}  // namespace
