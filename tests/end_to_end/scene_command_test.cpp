#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "headless/scene_file_view.h"
#include "tests/end_to_end/command.h"
#include "tests/end_to_end/stage.h"

// Takes on their way through files and processes.

namespace {

// A host whose plug-in gets no Core: the library is not one of its version.
const std::string kForeignCore = std::string(PUPPET_CORES) + "/other_version";

// All in which two scenes differ, but for keys that are only cached.
std::string Differences(const std::string& first, const std::string& second) {
    std::string told;
    for (const headless::SceneDifference& difference :
         headless::CompareSceneFiles(first, second, headless::CachedKeys::kLeftOut))
        told += difference.place + ": " + difference.what + '\n';
    return told;
}

class SceneCommand : public Command {
  protected:
    // Opens the scene, and saves it under another name. Gives what was told.
    nlohmann::json Open(const std::string& scene, const std::string& save,
                        const std::string& options = "",
                        const std::string& coreFolder = CORE_FOLDER) const {
        return nlohmann::json::parse(
            Do("open " + scene + " --json --save " + save + options, coreFolder));
    }

    // Each take has all of its nodes, and nobody had to be told of anything.
    static void ExpectTakes(const nlohmann::json& told, const std::vector<std::string>& names,
                            std::size_t nodesEach) {
        std::vector<std::string> found;
        for (const nlohmann::json& take : told["takes"]) {
            found.push_back(take["name"]);
            EXPECT_EQ(take["nodes"], nodesEach) << take;
            EXPECT_TRUE(take["missing"].empty()) << take;
        }
        std::ranges::sort(found);
        EXPECT_EQ(found, names);
        EXPECT_TRUE(told["boxes"].empty()) << told;
        EXPECT_TRUE(told["complaints"].empty()) << told;
    }
};

TEST_F(SceneCommand, TakesComeBackWhoeverOpenedAndSavedTheirSceneInBetween) {
    if (!std::filesystem::exists(kRealCapture)) GTEST_SKIP() << "assimp-testmodels is missing";
    const std::string recorded = File("recorded");
    Do("record " + std::string(kRealCapture) + " --scene " + recorded + " --poses " +
       File("recorded.csv"));
    EXPECT_TRUE(Open(recorded, File("host"), " --no-plugin")["takes"].empty());
    EXPECT_TRUE(Read(recorded) == Read(File("host"))) << "bytes differ";
    EXPECT_TRUE(Open(File("host"), File("plugin"), " --no-core")["takes"].empty());
    EXPECT_FALSE(Open(File("plugin"), File("foreign"), "", kForeignCore)["complaints"].empty());
    ExpectTakes(Open(File("foreign"), File("last")), {"01_01"}, 32);
    for (const char* scene : {"plugin", "foreign", "last"})
        EXPECT_EQ(Differences(recorded, File(scene)), "") << scene;
    Do("sample " + File("last") + " --times 0:22.9249083:0.0083333 --csv " + File("last.csv"));
    EXPECT_TRUE(Read(File("recorded.csv")) == Read(File("last.csv"))) << "poses differ";
}

TEST_F(SceneCommand, SeveralCapturesBecomeTakesWithinTakesInOneUndoStepAndMergeAnew) {
    std::string captures;
    for (const char* name : {"a.bvh", "b.bvh", "c.bvh", "d.bvh"})
        captures += Write(name, Walk(4)) + ' ';
    const std::string scene = File("scene");
    const auto told =
        nlohmann::json::parse(Do("record " + captures + " --scale 1 --json --scene " + scene));
    EXPECT_EQ(told["captures"].size(), 4u);
    EXPECT_EQ(told["nodes"], 12);
    EXPECT_TRUE(told["undoSteps"] == 1 && told["undoIdentical"] && told["redoIdentical"]);
    const auto parents = [](const nlohmann::json& opened) {
        std::string names;
        for (const nlohmann::json& take : opened["takes"])
            names += take["parent"].get<std::string>() + ',';
        return names;
    };
    const nlohmann::json opened = Open(scene, File("again"));
    ExpectTakes(opened, {"a", "b", "c", "d"}, 3);
    EXPECT_EQ(parents(opened), ",a,b,b,");
    ExpectFailure(Run("record " + captures + File("absent.bvh") + " --scene " + File("none")),
                  File("absent.bvh"));
    EXPECT_FALSE(std::filesystem::exists(File("none")));

    const std::vector<std::string> names = {"a", "a 2", "b", "b 2", "c", "c 2", "d", "d 2"};
    const std::string merge = "merge " + scene + ' ' + scene + " --json --save ";
    ExpectTakes(nlohmann::json::parse(Do(merge + File("merged"))), names, 3);
    const nlohmann::json merged = Open(File("merged"), File("again"));
    ExpectTakes(merged, names, 3);
    EXPECT_EQ(parents(merged), ",a,b,b,,a 2,b 2,b 2,");
    EXPECT_EQ(Differences(File("merged"), File("again")), "");
    for (const char* options : {" --by-host", " --no-core", " --no-plugin"})
        EXPECT_EQ(nlohmann::json::parse(Do(merge + File("hosted") + options))["nodes"], 24);
}

TEST_F(SceneCommand, BrokenScenesAreRefusedInOneLineThatNamesThem) {
    const std::string scene = File("scene");
    Do("record " + Write("walk.bvh", Walk(4)) + " --scene " + scene);
    const std::string whole = Read(scene);
    std::string changed = whole;
    changed[changed.size() / 2] ^= 1;
    const std::string save = " --save " + File("none");
    for (const std::string& broken :
         {Write("changed", changed), Write("foreign", "no scene at all"), File("absent")}) {
        SCOPED_TRACE(broken);
        for (const std::string& words :
             {"open " + broken + save, "open " + broken + " --no-plugin" + save,
              "merge " + broken + ' ' + scene + save, "merge " + scene + ' ' + broken + save,
              "merge " + scene + ' ' + broken + " --by-host" + save, "convert " + broken + save,
              "sample " + broken + " --times 0:1:1 --csv " + File("none")})
            ExpectFailure(Run(words), broken + ": ");
    }
    EXPECT_FALSE(std::filesystem::exists(File("none")));
    const std::string nowhere = File("nowhere/scene");
    ExpectFailure(Run("open " + scene + " --save " + nowhere), nowhere + ": ");
    EXPECT_EQ(Read(scene), whole);
}

TEST_F(SceneCommand, SamplesAreThePosesInCoreSpaceAlsoAfterConversion) {
    const std::string scene = File("scene");
    std::string walk = Walk(11);
    walk.replace(walk.find("Hip"), 3, "\"Hip\"");
    Do("record " + Write("a,b.bvh", walk) + " --scale 1 --scene " + scene);
    const std::string hip = " --node \"a,b_\\\"Hip\\\"\" --times 0:0.5:0.25";
    const std::string rows = Do("sample " + scene + hip);
    EXPECT_EQ(std::count(rows.begin(), rows.end(), '\n'), 4);
    EXPECT_EQ(rows.rfind("seconds,node,x,y,z,qx,qy,qz,qw,sx,sy,sz\n0,\"a,b_\"\"Hip\"\"\",0,", 0),
              0u)
        << rows;
    EXPECT_NE(rows.find("\n0.25,"), std::string::npos);
    Do("convert " + scene + " --save " + File("plain"));
    for (const headless::NodeInFile& node : headless::ViewSceneFile(File("plain")).nodes)
        EXPECT_EQ(node.controller.id, (Class_ID{0x2005, 0})) << node.name;
    // The host's own controllers keep a pose in parts, each rounded for itself.
    EXPECT_LT(FurthestApart(Do("sample " + File("plain") + hip), rows), 1e-6);
    EXPECT_EQ(Run("diff " + scene + " " + File("plain")).status, 1);
    ExpectFailure(Run("sample " + scene + " --node absent --times 0:1:1"),
                  "no node of the Core's is called \"absent\"");
    ExpectFailure(Run("sample " + scene + " --times 0:1e9:1"), "--times: expected", 2);
    ExpectFailure(Run("sample " + scene + " --times 0:1:1 --csv " + File("nowhere/csv")),
                  File("nowhere/csv") + ": ");
    ExpectFailure(Run("sample " + scene + " --times 0:1:1", folder_.Path().string()),
                  "the Core could not be");
}

}  // namespace
