#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <sstream>
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
    Do("record " + kRealCapture + " --scene " + recorded + " --poses " +
       File("recorded.csv"));
    ExpectTakes(Open(recorded, File("core")), {"01_01"}, 32);
    EXPECT_EQ(Differences(recorded, File("core")), "");
    EXPECT_TRUE(Open(File("core"), File("host"), " --no-plugin")["takes"].empty());
    EXPECT_TRUE(Read(File("core")) == Read(File("host"))) << "bytes differ";
    EXPECT_TRUE(Open(File("host"), File("plugin"), " --no-core")["takes"].empty());
    EXPECT_EQ(Differences(recorded, File("plugin")), "");
    EXPECT_FALSE(Open(File("plugin"), File("foreign"), "", kForeignCore)["complaints"].empty());
    EXPECT_EQ(Differences(recorded, File("foreign")), "");
    ExpectTakes(Open(File("foreign"), File("last")), {"01_01"}, 32);
    EXPECT_EQ(Differences(recorded, File("last")), "");
    Do("sample " + File("last") + " --times 0:22.9249083:0.0083333 --csv " + File("last.csv"));
    EXPECT_TRUE(Read(File("recorded.csv")) == Read(File("last.csv"))) << "poses differ";
}

TEST_F(SceneCommand, SeveralCapturesBecomeTakesWithinTakesInOneUndoStep) {
    std::string captures;
    for (const char* name : {"a.bvh", "b.bvh", "c.bvh", "d.bvh"})
        captures += Write(name, Walk(4)) + ' ';
    const auto told = nlohmann::json::parse(
        Do("record " + captures + " --scale 1 --json --scene " + File("scene")));
    EXPECT_EQ(told["captures"].size(), 4u);
    EXPECT_EQ(told["nodes"], 12);
    EXPECT_EQ(told["undoSteps"], 1);
    EXPECT_EQ(told["undoIdentical"], true);
    EXPECT_EQ(told["redoIdentical"], true);
    const nlohmann::json opened = Open(File("scene"), File("again"));
    ExpectTakes(opened, {"a", "b", "c", "d"}, 3);
    std::vector<std::string> parents;
    for (const nlohmann::json& take : opened["takes"])
        parents.push_back(take["parent"]);
    EXPECT_EQ(parents, (std::vector<std::string>{"", "a", "b", "b"}));
    ExpectFailure(Run("record " + captures + File("absent.bvh") + " --scene " + File("none")),
                  File("absent.bvh"));
    EXPECT_FALSE(std::filesystem::exists(File("none")));
}

TEST_F(SceneCommand, ASceneMergedIntoItselfKeepsEveryTakeWithItsNodes) {
    const std::string scene = File("scene");
    Do("record " + Write("walk.bvh", Walk(4)) + " --scene " + scene);
    const std::string thrice = scene + ' ' + scene + ' ' + scene;
    const std::vector<std::string> names = {"walk", "walk 2", "walk 3", "walk 4"};
    const auto merged = nlohmann::json::parse(
        Do("merge " + scene + ' ' + thrice + " --json --save " + File("merged")));
    ExpectTakes(merged, names, 3);
    ExpectTakes(Open(File("merged"), File("again")), names, 3);
    EXPECT_EQ(Differences(File("merged"), File("again")), "");
    for (const char* options : {" --by-host", " --no-core", " --no-plugin"}) {
        const auto byHost = nlohmann::json::parse(
            Do("merge " + scene + ' ' + scene + " --json --save " + File("hosted") + options));
        EXPECT_EQ(byHost["nodes"], 6) << options;
    }
}

TEST_F(SceneCommand, BrokenScenesAreRefusedInOneLineThatNamesThem) {
    const std::string scene = File("scene");
    Do("record " + Write("walk.bvh", Walk(4)) + " --scene " + scene);
    const std::string whole = Read(scene);
    std::string changed = whole;
    changed[changed.size() / 2] ^= 1;
    const std::string save = " --save " + File("none");
    for (const std::string& broken :
         {Write("cut", whole.substr(0, whole.size() / 2)), Write("changed", changed),
          Write("empty", ""), Write("foreign", "no scene at all"), File("absent")}) {
        SCOPED_TRACE(broken);
        ExpectFailure(Run("open " + broken + save), broken + ": ");
        ExpectFailure(Run("open " + broken + " --no-plugin" + save), broken + ": ");
        ExpectFailure(Run("merge " + broken + ' ' + scene + save), broken + ": ");
        ExpectFailure(Run("merge " + scene + ' ' + broken + save), broken + ": ");
        ExpectFailure(Run("merge " + scene + ' ' + broken + " --by-host" + save), broken + ": ");
        ExpectFailure(Run("convert " + broken + save), broken + ": ");
        ExpectFailure(Run("sample " + broken + " --times 0:1:1 --csv " + File("none")),
                      broken + ": ");
        EXPECT_FALSE(std::filesystem::exists(File("none")));
    }
    const std::string nowhere = File("nowhere/scene");
    ExpectFailure(Run("open " + scene + " --save " + nowhere), nowhere + ": ");
    EXPECT_EQ(Read(scene), whole);
}

// The host's own controllers keep a pose in parts, each rounded for itself.
void ExpectCloseRows(std::string rows, std::string expected) {
    constexpr double kRounding = 1e-6;
    std::ranges::replace(rows, '\n', ',');
    std::ranges::replace(expected, '\n', ',');
    std::istringstream found(rows);
    std::istringstream wanted(expected);
    std::string a;
    std::string b;
    while (std::getline(found, a, ',') && std::getline(wanted, b, ',')) {
        if (a == b) continue;

        EXPECT_NEAR(std::strtod(a.c_str(), nullptr), std::strtod(b.c_str(), nullptr), kRounding);
    }
    EXPECT_EQ(std::count(rows.begin(), rows.end(), ','),
              std::count(expected.begin(), expected.end(), ','));
}

TEST_F(SceneCommand, SamplesAreThePosesInCoreSpaceAlsoAfterConversion) {
    const std::string scene = File("scene");
    std::string walk = Walk(11);
    walk.replace(walk.find("Hip"), 3, "\"Hip\"");
    Do("record " + Write("a,b.bvh", walk) + " --scale 1 --scene " + scene);
    const std::string hip = " --node \"a,b_\\\"Hip\\\"\"";
    const std::string rows = Do("sample " + scene + hip + " --times 0:0.5:0.25");
    EXPECT_EQ(std::count(rows.begin(), rows.end(), '\n'), 4);
    EXPECT_EQ(rows.rfind("seconds,node,x,y,z,qx,qy,qz,qw,sx,sy,sz\n0,\"a,b_\"\"Hip\"\"\",0,", 0),
              0u)
        << rows;
    EXPECT_NE(rows.find("\n0.25,"), std::string::npos);
    Do("convert " + scene + " --save " + File("plain"));
    for (const headless::NodeInFile& node : headless::ViewSceneFile(File("plain")).nodes)
        EXPECT_EQ(node.controller.id, (Class_ID{0x2005, 0})) << node.name;
    ExpectCloseRows(Do("sample " + File("plain") + hip + " --times 0:0.5:0.25"), rows);
    ExpectFailure(Run("sample " + scene + " --node absent --times 0:1:1"),
                  "no node of the Core's is called \"absent\"");
    ExpectFailure(Run("sample " + scene + " --times 0:1e9:1"), "--times: expected", 2);
    EXPECT_EQ(Run("diff " + scene + " " + File("plain")).status, 1);
    ExpectFailure(Run("sample " + scene + " --times 0:1:1 --csv " + File("nowhere/csv")),
                  File("nowhere/csv") + ": ");
    ExpectFailure(Run("sample " + scene + " --times 0:1:1", folder_.Path().string()),
                  "the Core could not be");
}

}  // namespace
