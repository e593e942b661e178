#include <algorithm>
#include <filesystem>

#include "headless/scene_file_view.h"
#include "tests/end_to_end/command.h"
#include "tests/end_to_end/stage.h"

// Takes on their way through files, processes and Cores.

namespace {

// A host whose plug-in gets no Core: the library is not one of its version.
constexpr char kForeignCore[] = PUPPET_CORES "/other_version";

// Two Cores of the same sources, the second one built apart, with other flags for optimising and
// debugging than the plug-in has. What crosses by value is made on one side and freed on the other:
// texts, lists, meshes and trees of XML, in either direction. On Linux a block that is freed on a
// heap not its own ends the process, and AddressSanitizer names it; tests/windows looks after the
// heap there. Classes laid out otherwise do not get as far as a scene.
constexpr const char* kCores[] = {CORE_FOLDER, CORE_APART_FOLDER};

// Each take with its parent, its nodes and what it misses; then of what somebody had to be told.
std::string TakesIn(const nlohmann::json& told) {
    std::string line;
    for (const nlohmann::json& take : told["takes"])
        line += take["parent"].get<std::string>() + '/' + take["name"].get<std::string>() + ' ' +
                Line(take, {"nodes", "missing"}) + ", ";
    return line + Line(told, {"boxes", "complaints"});
}

TEST_F(Command, TakesComeBackWhoeverOpenedAndSavedTheirSceneInBetween) {
    if (!std::filesystem::exists(kRealCapture)) GTEST_SKIP() << "assimp-testmodels is missing";
    Write("walk.bvh", Walk(200));
    Do("draw --path \"0,0,0 0,100,0 0,100,50\" --name Path -o path");
    const std::string record = "record walk.bvh " + kRealCapture +
                               " --ground --follow-camera --into path --poses poses --scene ";
    Do(record + "apart", CORE_APART_FOLDER);
    Do(record + "recorded");
    EXPECT_TRUE(Read("apart") == Read("recorded")) << Run("diff apart recorded").out;

    EXPECT_TRUE(Ask("open recorded --save host --no-plugin")["takes"].empty());
    EXPECT_TRUE(Read("recorded") == Read("host")) << "bytes differ";
    EXPECT_TRUE(Ask("open host --save plugin --no-core")["takes"].empty());
    EXPECT_FALSE(Ask("open plugin --save foreign", kForeignCore)["complaints"].empty());
    std::string scene = "foreign";
    for (const char* core : kCores) {
        EXPECT_EQ(TakesIn(Ask("open " + scene + " --save " + scene + "2", core)),
                  "/walk 4 [], walk/01_01 32 [], [] []");
        scene += "2";
    }
    for (const char* changed : {"plugin", "foreign", "foreign2", "foreign22"})
        EXPECT_EQ(Do(std::string("diff recorded ") + changed), "");
    for (const char* core : kCores) {
        Do("sample foreign22 --times 0:22.9249083:0.0083333 --csv sampled", core);
        EXPECT_TRUE(core != kCores[0] || Read("sampled") == Read("poses")) << "poses differ";
    }
}

TEST_F(Command, SeveralCapturesBecomeTakesWithinTakesInOneUndoStepAndMergeAnew) {
    for (const char* name : {"a.bvh", "b.bvh", "c.bvh", "d.bvh"})
        Write(name, Walk(4));
    const Json told = Ask("record a.bvh b.bvh c.bvh d.bvh --scale 1 --scene scene");
    EXPECT_EQ(
        Line(told, {"captures/3/capture", "nodes", "undoSteps", "undoIdentical", "redoIdentical"}),
        R"("d.bvh" 12 1 true true)");
    const std::string takes = "/a 3 [], a/b 3 [], b/c 3 [], b/d 3 [], ";
    EXPECT_EQ(TakesIn(Ask("open scene")), takes + "[] []");
    const std::string merged = takes + "/a 2 3 [], a 2/b 2 3 [], b 2/c 2 3 [], b 2/d 2 3 [], [] []";
    EXPECT_EQ(TakesIn(Ask("merge scene scene --save merged")), merged);
    EXPECT_EQ(TakesIn(Ask("open merged --save again")), merged);
    EXPECT_EQ(Do("diff merged again"), "");
    for (const std::string guests : {" --by-host", " --no-core", " --no-plugin"})
        EXPECT_EQ(Ask("merge scene scene --save hosted" + guests)["nodes"], 24);
}

TEST_F(Command, SamplesAreThePosesInCoreSpaceAlsoAfterConversion) {
    std::string walk = Walk(11);
    Write("a,b.bvh", walk.replace(walk.find("Hip"), 3, "\"Hip\""));
    Do("record a,b.bvh --scale 1 --scene scene");
    const std::string hip = " --node \"a,b_\\\"Hip\\\"\" --times 0:0.5:0.25";
    const std::string rows = Do("sample scene" + hip);
    EXPECT_EQ(std::ranges::count(rows, '\n'), 4);
    EXPECT_TRUE(
        rows.starts_with("seconds,node,x,y,z,qx,qy,qz,qw,sx,sy,sz\n0,\"a,b_\"\"Hip\"\"\",0,"))
        << rows;
    EXPECT_NE(rows.find("\n0.25,"), std::string::npos);
    Do("convert scene --save plain");
    EXPECT_EQ(Run("diff scene plain").status, 1);
    for (const headless::NodeInFile& node : headless::ViewSceneFile(File("plain")).nodes)
        EXPECT_EQ(node.controller.id, (Class_ID{0x2005, 0})) << node.name;
    // The host's own controllers keep a pose in parts, each rounded for itself.
    const std::string plain = Do("sample plain" + hip);
    for (const char* row : {"\n0.25,", "\n0.5,"}) {
        const auto pose = [row](const std::string& table) {
            return std::stod(table.substr(table.find("\",", table.find(row)) + 2));
        };
        EXPECT_NEAR(pose(plain), pose(rows), 1e-6);
    }
}

}  // namespace
