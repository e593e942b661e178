#include "headless/copies.h"
#include "headless/memory_chunks.h"
#include "headless/scene_file_view.h"
#include "tests/scene_file/file_world.h"

namespace {

namespace fs = std::filesystem;

using SceneFile = FileWorld;

TEST_F(SceneFile, ComesBackToTheByteWithAndWithoutItsClasses) {
    const std::string built = SaveBuilt();
    const std::uint64_t digest = headless::SceneDigest();
    const auto nextHandle = [&] { return Add("next", headless::NewSphere(1, 4))->GetHandle(); };
    const std::uint32_t next = nextHandle();
    for (const bool isKnowing : {true, false}) {
        Start(isKnowing);
        EXPECT_EQ(Open("built").size(), isKnowing ? 0U : 2U);
        EXPECT_EQ(headless::SceneDigest(), digest);
        EXPECT_EQ(Save("again"), built);
        EXPECT_EQ(nextHandle(), next);
    }
    Object& odd = *headless::FindNode("")->GetObjectRef();
    auto& copy = static_cast<ReferenceTarget&>(*headless::CopyOf(odd));
    EXPECT_EQ(headless::SavedBytes(copy), headless::SavedBytes(odd));
    EXPECT_EQ(copy.GetReference(0), headless::FindNode("late"));
    copy.DeleteMe();
}

TEST_F(SceneFile, CutOrChangedAnywhereIsRefusedWithItsNameAndTheByte) {
    const std::string built = SaveBuilt();
    Start(false);
    const auto expectRefused = [&](const std::string& bytes) {
        const std::string file = folder.Write("damaged", bytes);
        const std::string error = host->OpenScene(file).error;
        EXPECT_TRUE(error.starts_with(file + ": at byte ")) << bytes.size() << ": " << error;
    };
    for (std::size_t at = 0; at < built.size(); ++at) {
        expectRefused(built.substr(0, at));
        std::string changed = built;
        changed[at] = static_cast<char>(changed[at] ^ 1 << at % 8);
        expectRefused(changed);
    }
    expectRefused(built + '\0');
    EXPECT_TRUE(headless::Nodes().empty());
}

TEST_F(SceneFile, IsUntouchedAndAloneAfterASaveThatFailed) {
    const std::string built = SaveBuilt();
    odd::written.clear();  // so that an object fails
    odd::saving = 'f';
    for (const char* name : {"", "none/built", "built"}) {
        const std::string error = host->SaveScene(File(name)).error;
        EXPECT_TRUE(error.starts_with(File(name) + ": ")) << error;
        EXPECT_EQ(ReadFile(File("built")), built);
        EXPECT_EQ(std::distance(fs::directory_iterator(folder.Path()), {}), 1);
    }
}

TEST_F(SceneFile, KeepsWhatDidNotLoadAndBoundsWhatIsBadlyNested) {
    SaveBuilt();
    odd::saving = 'n';
    const std::string nested = Save("nested");
    for (const char* loading : {"f", "t"}) {
        odd::loading = loading;
        Start(true);
        odd::written.clear();
        EXPECT_EQ(Open("nested").size(), 3U);
        EXPECT_EQ(dynamic_cast<odd::Helper*>(headless::FindNode("")->GetObjectRef()), nullptr);
        EXPECT_EQ(Save("again"), nested);
    }
    odd::loading = "b";
    Start(true);
    const std::vector<std::string> told = Open("built");
    const char* const endings[] = {
        ("Odd control of the node \"\" could not read all of its bytes as they are; the next save "
         "keeps what it could read"),
        "; it is kept as it is stored",
        ": Odd utility could not read all of a chunk as it is; it is kept as it is stored"};
    ASSERT_EQ(told.size(), 3U);
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_TRUE(told[i].ends_with(endings[i])) << told[i];
}

TEST_F(SceneFile, KeepsChunksOfAUtilityBesideWhatItWritesItself) {
    // The ids of what a save writes of the utility.
    const auto saved = [&](const odd::Chunks& chunks) {
        odd::written = chunks;
        Save("scene");
        std::string ids;
        for (const auto& utility : headless::ViewSceneFile(File("scene")).utilities)
            for (const auto& chunk : utility.chunks)
                ids += std::to_string(chunk.id);
        return ids;
    };
    Start(true);
    const odd::Chunks stored{{1, "one"}, {2, "two"}, {3, "three"}};
    // How the utility loads, complaints of it, and the ids that are saved where the utility writes
    // nothing at its next save, and where it writes the chunk 9.
    const std::tuple<const char*, std::size_t, const char*, const char*> cases[] = {
        {"", 0, "123", "1239"},   {"rrr", 0, "", "9"},      {"rro", 0, "", "9"},
        {"rsr", 0, "2", "29"},    {"r", 0, "23", "239"},    {"rpr", 1, "2", "29"},
        {"brr", 1, "1", "19"},    {"rfr", 1, "123", "923"}, {"rrrx", 1, "123", "1239"},
        {"pfr", 1, "123", "9123"}};
    for (const auto& [loading, complaints, alone, beside] : cases) {
        SCOPED_TRACE(loading);
        host->NewScene();
        EXPECT_EQ(saved(stored), "123");
        odd::loading = loading;
        EXPECT_EQ(Open("scene").size(), complaints);
        EXPECT_EQ(saved({}), alone);
        EXPECT_EQ(saved({{9, "own"}}), beside);
        EXPECT_EQ(saved({{9, "other"}}), beside) << "at the next save";
    }
    host->NewScene();
    EXPECT_EQ(saved({}), "") << "an emptied scene";

    // What it has written again to the byte does not grow from save to save.
    saved({{9, "other"}, stored[0], stored[1], stored[2]});
    odd::loading = "";
    EXPECT_TRUE(Open("scene").empty());
    EXPECT_EQ(saved({{9, "other"}}), "1239");
    EXPECT_EQ(saved({{9, "third"}}), "91239");
}

TEST_F(SceneFile, MergesUnderNewHandlesWithEverythingThatBelongsToIt) {
    odd::written.clear();
    SaveBuilt();
    Start(false);
    Open("built");
    const std::vector<headless::NodeView> old = headless::Nodes();
    const std::uint32_t last = headless::FindNode("")->GetHandle();
    EXPECT_EQ(host->MergeScene(File("built")).error, "");
    for (const headless::NodeView& node : headless::Nodes())
        EXPECT_EQ(node.selected, node.handle > last);
    for (const headless::NodeView& node : old)
        GetCOREInterface()->DeleteNode(GetCOREInterface()->GetINodeByHandle(node.handle));
    host->Select({"Hip", "line"});
    Save("merged");
    const std::vector<headless::SceneDifference> differences =
        headless::CompareSceneFiles(File("built"), File("merged"), headless::CachedKeys::kCompared);
    EXPECT_EQ(differences.size(), old.size());
    for (const headless::SceneDifference& difference : differences)
        EXPECT_TRUE(difference.what.starts_with("handle ")) << difference.place << difference.what;
    for (const headless::SessionSettings& other :
         {headless::WithUnitsPerMetre(7), headless::SessionSettings{.frameRate = 24}}) {
        Start(true, other);
        EXPECT_TRUE(host->MergeScene(File("built")).error.starts_with(File("built")));
        EXPECT_TRUE(headless::Nodes().empty());
    }
}

TEST_F(SceneFile, SweepsUpWhatKilledSavesHaveLeftButNothingThatSomebodyMayWant) {
    const std::string built = SaveBuilt();
    const std::string cut = built.substr(0, built.size() - 1);
    std::string newer = cut;
    newer[sizeof "LumScene" - 1] = 2;
    // Name, bytes, age in hours, and whether it stays.
    const std::tuple<const char*, std::string, int, bool> all[] = {
        {".0123abcd.saving", cut, 25, false},  {".00000000.saving", "", 25, false},
        {".11111111.saving", built, 25, true}, {".22222222.saving", cut, 23, true},
        {".33333333.saving", newer, 25, true}, {".3.saving", cut, 25, true},
        {".0123abcd.scene1", cut, 25, true}};
    for (const auto& [name, bytes, hours, stays] : all)
        fs::last_write_time(folder.Write(name, bytes),
                            fs::file_time_type::clock::now() - std::chrono::hours(hours));
    Save("built");
    for (const auto& [name, bytes, hours, stays] : all)
        EXPECT_EQ(fs::exists(File(name)), stays) << name;
}

}  // namespace
