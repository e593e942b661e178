#include "tests/end_to_end/command.h"

#include <algorithm>
#include <filesystem>

#include "platform/narrow_path.h"
#include "platform/testing.h"
#include "tests/end_to_end/stage.h"

// The command as a person calls it: what it prints, and how it ends.

namespace {

TEST_F(Command, RecordsIntoASceneWithItsGroundAndItsPath) {
    EXPECT_EQ(Do("--version"), "1.0.0\n");
    Do("draw --path \"0,0,0 0,100,0 0,100,50\" --at 10,20,30 --name Path -o path");
    Write("walk.bvh", Walk(5));
    // Once more onto the nodes that are there: path, ground, camera, two joints, guide.
    for (const std::string into : {"path", "take"}) {
        const Json told =
            Ask("record walk.bvh --scale 1 --ground --follow-camera --scene take "
                "--csv places --into " +
                into);
        EXPECT_EQ(Line(told, {"capture", "joints", "frames", "keys", "nodes", "liftedFrames"}),
                  R"("walk.bvh" 2 5 11 6 0)");
        EXPECT_EQ(Line(told, {"undoSteps", "undoIdentical", "redoIdentical", "hostObjectsAlive"}),
                  "1 true true 0");
        EXPECT_LT(told["maxPositionErrorMetres"].get<double>(), 1e-4);
        EXPECT_LT(told["maxFieldOfViewErrorDegrees"].get<double>(), 1e-5);
        EXPECT_LT(told["maxTargetDistanceErrorMetres"].get<double>(), 1e-6);
    }
    const std::string opened = Do("open take");
    Do("draw take --sphere 5 -o take");
    EXPECT_EQ(Do("open take"), "take: 7" + opened.substr(opened.find(" nodes")));
    const auto inspected = [this](const std::string& node) {
        return Ask("inspect take --node " + node)["nodes"].at(0);
    };
    const Json camera = inspected("walk_Camera");
    EXPECT_EQ(Line(camera, {"lends", "lens/fieldOfViewType"}), R"(["transform","lens"] 1)");
    EXPECT_GT(camera["lens"]["targetDistance"].get<double>(), 0);
    const Json knee = inspected("walk_Knee");
    EXPECT_EQ(knee["parent"], "walk_Hip");
    EXPECT_NEAR(knee["transform"]["local"][13].get<double>(), -kUnitsPerMetre / 2, 1e-4);
    // Arrows along the path, one each quarter of a metre of its 150 units: fifteen of eight faces,
    // the tip of each 0.8 of ten units ahead of its start.
    const Json guide = inspected("walk_Guide");
    EXPECT_EQ(guide["mesh"]["faces"], 15 * 8);
    EXPECT_NEAR(guide["mesh"]["bounds"]["most"][2].get<double>(), 48, 1e-3);
    const std::vector<double> world = guide["transform"]["world"];
    for (const auto& [cell, place] : {std::pair(12U, 10), {13U, 30}, {14U, -20}})
        EXPECT_NEAR(world[cell] * kUnitsPerMetre, place, 1e-3);
    const std::string places = Read("places");
    EXPECT_TRUE(places.starts_with("frame,seconds,joint,x,y,z\n0,0,Hip,")) << places;
    EXPECT_EQ(std::ranges::count(places, '\n'), 11);
}

TEST_F(Command, SaysThatThereIsNoCoreOfUse) {
    Write("walk.bvh", Walk(2));
    const std::string attached = "the Core could not be attached (";
    for (const std::string& core :
         {folder_.Path().string(), std::string(PUPPET_CORES "/without_version"),
          std::string(PUPPET_CORES "/without_attach"), std::string(PUPPET_CORES "/without_detach")})
        ExpectRefusal("record walk.bvh", attached, 1, core);
    ExpectRefusal("record walk.bvh", attached + "it is of another version", 1,
                  PUPPET_CORES "/other_version");
}

TEST_F(Command, FollowsARealCaptureInEitherControllerAndInAnyUnits) {
    if (!std::filesystem::exists(kRealCapture)) GTEST_SKIP() << "assimp-testmodels is missing";
    for (const char* options : {"", " --units 1", " --units 100 --no-optimised-controller"}) {
        const Json told = Ask("record " + kRealCapture + options);
        EXPECT_EQ(Line(told, {"joints", "frames"}), "31 2752") << options;
        EXPECT_LT(told["maxPositionErrorMetres"].get<double>(), 5e-6) << options;
    }
}

TEST_F(Command, TellsWhatASceneHoldsAndInWhatItDiffers) {
    for (const int frames : {5, 6}) {
        Write("walk.bvh", Walk(static_cast<std::size_t>(frames)));
        Do("record walk.bvh --scene take" + std::to_string(frames));
    }
    const Json whole = Ask("info take5");
    EXPECT_EQ(Line(whole, {"nodes/1/name", "nodes/1/keys", "utilities/0/chunks/0/id",
                           "host/keptClasses", "host/utilityChunks/0/taken"}),
              R"("walk_Hip" 5 1032 [] true)");
    EXPECT_GT(whole["nodes"][1]["tagBytes"], 0);
    EXPECT_EQ(Line(Ask("info take5 --no-core"), {"host/utilityChunks/0/taken"}), "false");
    EXPECT_NE(Do("info take5 --no-plugin").find("chunk 1032"), std::string::npos);

    EXPECT_EQ(Do("diff take5 take5 --cached-keys"), "");
    const Ending ending = Run("diff take5 take6");
    EXPECT_TRUE(ending.status == 1 && ending.error.empty()) << ending.error;
    for (const char* part : {"node \"walk_Hip\" (", "5 and 6 keys, which differ from tick "})
        EXPECT_NE(ending.out.find(part), std::string::npos) << ending.out;
    if (std::filesystem::exists("/dev/full")) {
        EXPECT_EQ(platform::RunProgram({.program = COMMAND,
                                        .arguments = platform::FromNarrow("diff take5 take6"),
                                        .out = "/dev/full",
                                        .error = "/dev/null",
                                        .folder = folder_.Path()}),
                  2);
    }
    std::filesystem::resize_file(File("take6"), 100);
    ExpectRefusal("diff take5 take6", "take6: ", 2);
    ExpectRefusal("info take6", "take6: at byte ", 1);
}

}  // namespace
