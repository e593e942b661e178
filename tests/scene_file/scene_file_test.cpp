#include <chrono>

#include "headless/copies.h"
#include "headless/scene_file_view.h"
#include "tests/scene_file/file_world.h"

namespace {

class SceneFile : public FileWorld {
  protected:
    static constexpr std::size_t kOddObjectClasses = 2;  // a line for each that is not loaded

    void Open(const std::string& name, std::size_t complaints = 0) {
        const headless::FileOutcome outcome = Host().OpenScene(File(name));
        EXPECT_EQ(outcome.error, "");
        EXPECT_EQ(outcome.complaints.size(), complaints);
    }
};

TEST_F(SceneFile, ComesBackToTheByteWithAndWithoutItsClasses) {
    headless::SessionSettings settings = headless::WithUnitsPerMetre(40);
    settings.frameRate = 25;
    Start(Classes::kKnown, settings);
    BuildScene();
    const std::string built = Save("built");
    const std::uint64_t digest = headless::SceneDigest();
    const auto nextHandle = [] {
        return GetCOREInterface()->CreateObjectNode(headless::NewSphere(1, 4))->GetHandle();
    };
    const std::uint32_t next = nextHandle();

    for (const Classes classes : {Classes::kKnown, Classes::kMissing}) {
        Start(classes);
        odd::Utility::text.clear();
        Open("built", classes == Classes::kKnown ? 0 : kOddObjectClasses);
        EXPECT_EQ(headless::SceneDigest(), digest);
        EXPECT_EQ(odd::Utility::text, classes == Classes::kKnown ? "of the utility" : "");
        EXPECT_EQ(Save("again"), built);
        EXPECT_EQ(headless::FindNode("late")->GetParentNode(), headless::FindNode("Hip"));
        EXPECT_EQ(nextHandle(), next);
    }
    // What stands in is copied like anything else.
    INodeTab nodes;
    INode* odd = headless::FindNode("");
    nodes.Append(1, &odd);
    ASSERT_TRUE(GetCOREInterface()->CloneNodes(nodes, {}, false, NODE_COPY, nullptr, nullptr));
    Save("copied");
    Start(Classes::kKnown);
    Open("copied");
    auto* copy = dynamic_cast<odd::Helper*>(headless::FindNode("01")->GetObjectRef());
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(copy->text, "of the helper");
    EXPECT_EQ(copy->GetReference(0), headless::FindNode("late"));
}

TEST_F(SceneFile, CutOrChangedAnywhereIsRefusedWithItsNameAndTheByte) {
    const std::string built = SaveBuilt();
    Start(Classes::kMissing);
    const std::uint64_t digest = headless::SceneDigest();
    const auto expectRefused = [&](const std::string& bytes, std::size_t at) {
        WriteBytes("damaged", bytes);
        const std::string error = Host().OpenScene(File("damaged")).error;
        EXPECT_TRUE(error.starts_with(File("damaged") + ": at byte ")) << at << ": " << error;
    };
    for (std::size_t at = 0; at < built.size(); ++at) {
        expectRefused(built.substr(0, at), at);
        std::string changed = built;
        changed[at] = static_cast<char>(changed[at] ^ 1 << at % 8);
        expectRefused(changed, at);
    }
    expectRefused(built + '\0', built.size());
    EXPECT_EQ(headless::SceneDigest(), digest);
}

TEST_F(SceneFile, IsUntouchedAndAloneAfterASaveThatFailed) {
    const std::string built = SaveBuilt();
    const auto expectFailed = [&](const std::string& path) {
        const std::string error = Host().SaveScene(path).error;
        EXPECT_TRUE(error.starts_with(path + ": ")) << error;
        EXPECT_EQ(ReadFile(File("built")), built);
        EXPECT_EQ(FilesInFolder(), 1U);
    };
    expectFailed(File(""));
    expectFailed(File("none/built"));
    odd::Utility::text.clear();  // so that an object fails
    odd::saving = odd::Manner::kFailing;
    expectFailed(File("built"));
}

TEST_F(SceneFile, KeepsWhatDidNotLoadAndBoundsWhatIsBadlyNested) {
    SaveBuilt();
    odd::saving = odd::Manner::kBadNesting;
    const std::string nested = Save("nested");
    for (const odd::Manner manner : {odd::Manner::kFailing, odd::Manner::kThrowing}) {
        odd::loading = manner;
        Start(Classes::kKnown);
        odd::Utility::text.clear();
        Open("nested", 3);
        EXPECT_EQ(dynamic_cast<odd::Helper*>(headless::FindNode("")->GetObjectRef()), nullptr);
        EXPECT_EQ(Save("again"), nested);
    }
    odd::loading = odd::Manner::kGreedy;
    Start(Classes::kKnown);
    const std::vector<std::string> told = Host().OpenScene(File("built")).complaints;
    ASSERT_EQ(told.size(), 3U);
    EXPECT_NE(
        told[0].find("Odd control of the node \"\" could not read all of its bytes as they are; "
                     "the next save keeps what it could read"),
        std::string::npos)
        << told[0];
    EXPECT_TRUE(told[1].ends_with("; it is kept as it is stored")) << told[1];
    EXPECT_TRUE(told[2].ends_with(
        ": Odd utility could not read all of a chunk as it is; it is kept as it is stored"));
    EXPECT_NE(dynamic_cast<odd::Transform*>(headless::FindNode("")->GetTMController()), nullptr);
}

TEST_F(SceneFile, MergesUnderNewHandlesWithEverythingThatBelongsToIt) {
    const std::string built = SaveBuilt();
    const std::size_t count = headless::Nodes().size();
    const std::uint32_t last = headless::FindNode("")->GetHandle();
    Start(Classes::kMissing);
    Open("built", kOddObjectClasses);
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(Host().MergeScene(File("built")).error, "");
    Save("merged");
    Start(Classes::kKnown);
    Open("merged");
    const std::vector<headless::NodeView> nodes = headless::Nodes();
    ASSERT_EQ(nodes.size(), 3 * count);
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        EXPECT_EQ(nodes[i].name, nodes[i % count].name);
        EXPECT_EQ(nodes[i].selected, i >= 2 * count);
        EXPECT_EQ(nodes[i].handle > last, i >= count);
        if (nodes[i].name.empty()) {
            INode* node = GetCOREInterface()->GetINodeByHandle(nodes[i].handle);
            auto* helper = dynamic_cast<odd::Helper*>(node->GetObjectRef());
            ASSERT_NE(helper, nullptr);
            auto* late = dynamic_cast<INode*>(helper->GetReference(0));
            INode* const hip = node->GetParentNode()->GetParentNode();
            EXPECT_EQ(late->GetParentNode(), hip);
            EXPECT_EQ(node->GetTMController()->GetReference(1), hip->GetTMController());
            EXPECT_EQ(hip->GetObjectRef(), node->GetParentNode()->GetObjectRef());
        }
    }
    for (const headless::SessionSettings& other :
         {headless::WithUnitsPerMetre(7), headless::SessionSettings{.frameRate = 24}}) {
        Start(Classes::kKnown, other);
        EXPECT_TRUE(Host().MergeScene(File("built")).error.starts_with(File("built")));
        EXPECT_TRUE(headless::Nodes().empty());
    }
}

TEST_F(SceneFile, SweepsUpWhatKilledSavesHaveLeftButNothingThatSomebodyMayWant) {
    const std::string built = SaveBuilt();
    const std::string cut = built.substr(0, built.size() - 1);
    std::string newer = cut;
    newer[sizeof "LumScene" - 1] = 2;
    struct Left {
        const char* name;
        std::string bytes;
        int hours;
        bool stays;
    };
    const Left all[] = {{".0123abcd.saving", cut, 25, false},  {".00000000.saving", "", 25, false},
                        {".11111111.saving", built, 25, true}, {".22222222.saving", cut, 23, true},
                        {".33333333.saving", newer, 25, true}, {".3.saving", cut, 25, true},
                        {".0123abcd.scene1", cut, 25, true}};
    for (const Left& left : all) {
        WriteBytes(left.name, left.bytes);
        const auto now = std::filesystem::file_time_type::clock::now();
        std::filesystem::last_write_time(File(left.name), now - std::chrono::hours(left.hours));
    }
    Save("built");
    for (const Left& left : all)
        EXPECT_EQ(std::filesystem::exists(File(left.name)), left.stays) << left.name;
}

}  // namespace
