#include "headless/scene_file_view.h"
#include "tests/end_to_end/command.h"

// Takes on their way through files, processes and Cores.

namespace {

// Two Cores of the same sources, the second one built apart, with other flags for optimising and
// debugging than the plug-in has. What crosses by value is made on one side and freed on the other:
// texts, lists, meshes and trees of XML, in either direction. On Linux a block that is freed on a
// heap not its own ends the process, and AddressSanitizer names it; tests/windows looks after the
// heap there. Classes laid out otherwise do not get as far as a scene.
constexpr const char* kCores[] = {CORE_APART_FOLDER, CORE_FOLDER};

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
    std::string scene;
    for (const char* core : kCores) {
        core_ = core;
        Do("record walk.bvh " + kRealCapture +
           " --ground --follow-camera --into path --poses poses" + scene + " --scene recorded" +
           scene);
        scene = "2";
    }
    EXPECT_TRUE(Read("recorded") == Read("recorded2")) << Run("diff recorded recorded2").out;

    EXPECT_TRUE(Ask("open recorded --save host --no-plugin")["takes"].empty());
    EXPECT_TRUE(Read("recorded") == Read("host")) << "bytes differ";
    EXPECT_TRUE(Ask("open host --save plugin --no-core")["takes"].empty());
    core_ = PUPPET_CORES "/other_version";  // no Core of the plug-in's
    EXPECT_FALSE(Ask("open plugin --save foreign")["complaints"].empty());
    scene = "foreign";
    std::string poses = "poses";  // in the last digit each Core's own
    for (const char* core : kCores) {
        core_ = core;
        EXPECT_EQ(TakesIn(Ask("open " + scene + " --save " + scene + "2")),
                  "/walk 4 [], walk/01_01 32 [], [] []");
        scene += "2";
        Do("sample " + scene + " --times 0:22.925:0.008333333333333333 --csv sampled");
        EXPECT_TRUE(Read("sampled") == Read(poses)) << "poses differ in " << core;
        poses += "2";
    }
    for (const char* changed : {"plugin", "foreign", "foreign2", "foreign22"})
        EXPECT_EQ(Do(std::string("diff recorded ") + changed), "");
}

TEST_F(Command, SeveralCapturesBecomeTakesWithinTakesInOneUndoStepAndMergeAnew) {
    for (const char* name : {"a.bvh", "b.bvh", "c.bvh", "d.bvh"})
        Write(name, Walk(4));
    const Json told =
        Ask("record a.bvh b.bvh c.bvh d.bvh --scale 1 --units 100 --no-optimised-controller "
            "--scene scene");
    EXPECT_EQ(
        Line(told, {"captures/3/capture", "nodes", "undoSteps", "undoIdentical", "redoIdentical"}),
        R"("d.bvh" 12 1 true true)");
    EXPECT_LT(told["maxPositionErrorMetres"].get<double>(), 5e-6);
    const std::string merged =
        "/a 3 [], a/b 3 [], b/c 3 [], b/d 3 [], /a 2 3 [], a 2/b 2 3 [], "
        "b 2/c 2 3 [], b 2/d 2 3 [], [] []";
    EXPECT_EQ(TakesIn(Ask("merge scene scene --save merged")), merged);
    EXPECT_EQ(TakesIn(Ask("open merged --save again")), merged);
    EXPECT_EQ(Do("diff merged again"), "");
    for (const std::string guests : {" --by-host", " --no-core", " --no-plugin"})
        EXPECT_EQ(Ask("merge scene scene --save hosted" + guests)["nodes"], 24);
}

TEST_F(Command, SamplesAreThePosesInCoreSpaceAlsoAfterConversion) {
    Write("a,b.bvh", With(Walk(11), "Hip", "\"Hip\""));
    Do("record a,b.bvh --scale 1 --scene scene");
    const std::string hip = " --node \"a,b_\\\"Hip\\\"\" --times 0:0.5:0.25";
    const std::string rows = Do("sample scene" + hip);
    EXPECT_EQ(std::ranges::count(rows, '\n'), 4);
    EXPECT_TRUE(
        rows.starts_with("seconds,node,x,y,z,qx,qy,qz,qw,sx,sy,sz\n0,\"a,b_\"\"Hip\"\"\",0,"))
        << rows;
    Do("convert scene --save plain");
    EXPECT_EQ(Run("diff scene plain").status, 1);
    for (const headless::NodeInFile& node : headless::ViewSceneFile(File("plain")).nodes)
        EXPECT_EQ(node.controller.id, (Class_ID{0x2005, 0})) << node.name;
    // The host's own controllers keep a pose in parts, each rounded for itself.
    const std::string plain = Do("sample plain" + hip);
    for (const auto& [row, x] : {std::pair("\n0.25,", 0.5), {"\n0.5,", 1.0}})
        for (const std::string& table : {rows, plain})
            EXPECT_NEAR(std::stod(table.substr(table.find("\",", table.find(row)) + 2)), x, 1e-6);
}

}  // namespace
