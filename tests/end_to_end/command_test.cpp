#include "tests/end_to_end/command.h"

#include "platform/testing.h"

// The command as a person calls it: what it prints, and how it ends.

namespace {

TEST_F(Command, RecordsIntoASceneWithItsGroundAndItsPath) {
    EXPECT_EQ(Do("--version"), "lumiset-headless 1.3.1, interface 8108\n");
    Do("draw --path \"0,0,0 0,100,0 0,100,50\" --at 10,20,30 --name Path -o path");
    Write("walk.bvh", Walk(5));
    // Once more onto the nodes that are there: path, ground, camera, two joints, guide.
    for (const std::string into : {"path", "take"}) {
        const Json told = Ask(
            "record walk.bvh --scale 1 --ground --follow-camera --scene take --csv places --into " +
            into);
        EXPECT_EQ(Line(told, {"capture", "joints", "frames", "keys", "nodes", "liftedFrames",
                              "undoSteps", "undoIdentical", "redoIdentical", "hostObjectsAlive"}),
                  R"("walk.bvh" 2 5 11 6 0 1 true true 0)");
        EXPECT_LT(told["maxPositionErrorMetres"].get<double>(), 1e-4);
        EXPECT_LT(told["maxTargetDistanceErrorMetres"].get<double>(), 1e-6);
    }
    const std::string opened = Do("open take");
    Do("draw take --sphere 5 -o take");
    EXPECT_EQ(Do("open take"), "take: 7" + opened.substr(opened.find(" nodes")));
    const auto inspected = [this](const std::string& node) {
        return Ask("inspect take --node " + node)["nodes"].at(0);
    };
    EXPECT_EQ(Line(inspected("walk_Camera"), {"lends", "lens/fieldOfViewType"}),
              R"(["transform","lens"] 1)");
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

TEST_F(Command, InspectsWhatWasDrawnAtEachTimeInItsOwnUnits) {
    Do("draw --sphere 20 --segments 64 --bend 45 --name Ball -o drawn");
    Do("draw drawn --path \"0,0,0 30,0,0 30,40,0\" --closed --name Closed -o drawn");
    const auto inspected = [this](const std::string& node) {
        return Ask("inspect drawn --node " + node)["nodes"].at(0);
    };
    EXPECT_EQ(Line(inspected("Ball"), {"lends", "mesh/bounds/least", "mesh/bounds/most"}),
              R"(["transform","helper","mesh"] [-20.0,-20.0,-20.0] [20.0,20.0,20.0])");
    // The axis, 40 long, is a quarter of a circle by then, whose radius is where the pole has gone.
    const double pole = inspected("Ball --time 2")["mesh"]["bounds"]["most"][1];
    EXPECT_NEAR(pole, 80 / std::numbers::pi, 1e-4);
    const Json closed = inspected("Closed");
    EXPECT_EQ(closed["lends"].back(), "shape");
    EXPECT_NEAR(closed["shape"]["curveLengths"][0].get<double>(), 120, 0.012);
}

TEST_F(Command, SaysThatThereIsNoCoreOfUse) {
    Write("walk.bvh", Walk(2));
    const std::string attached = "the Core could not be attached (";
    for (const std::string core :
         {"no", "without_version", "without_attach", "without_detach", "other_version"}) {
        core_ = PUPPET_CORES "/" + core;
        ExpectRefusal("record walk.bvh", attached, 1);
    }
}

TEST_F(Command, TellsWhatASceneHoldsAndInWhatItDiffers) {
    for (const char frames : {'5', '6'}) {
        Write("walk.bvh", Walk(static_cast<std::size_t>(frames - '0')));
        Do(std::string("record walk.bvh --scene take") + frames);
    }
    EXPECT_EQ(Line(Ask("info take5"), {"nodes/1/name", "nodes/1/keys", "utilities/0/chunks/0/id",
                                       "host/keptClasses", "host/utilityChunks/0/taken"}),
              R"("walk_Hip" 5 1032 [] true)");
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
