#include "tests/end_to_end/command.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>

#include "tests/end_to_end/stage.h"

// The command as a person calls it: what it prints, and how it ends.

namespace {

TEST_F(Command, TellsAProgramWhatWasRecordedAndWritesThePositions) {
    const std::string capture = Write("walk.bvh", Walk(5));
    const Ending ending = Run("record " + capture + " --scale 1 --json --csv " + File("walk.csv") +
                              " --trace " + File("trace"));
    ASSERT_EQ(ending.status, 0) << ending.error;
    const nlohmann::json told = nlohmann::json::parse(ending.out);
    EXPECT_EQ(told["capture"], capture);
    EXPECT_EQ(told["joints"], 2);
    EXPECT_EQ(told["frames"], 5);
    EXPECT_EQ(told["keys"], 10);
    EXPECT_EQ(told["undoSteps"], 1);
    EXPECT_EQ(told["undoIdentical"], true);
    EXPECT_EQ(told["redoIdentical"], true);
    EXPECT_EQ(told["hostObjectsAlive"], 0);
    EXPECT_LT(told["maxPositionErrorMetres"].get<double>(), 1e-4);
    const std::string positions = Read(File("walk.csv"));
    EXPECT_EQ(positions.rfind("frame,seconds,joint,x,y,z\n0,0,Hip,", 0), 0U);
    EXPECT_EQ(std::count(positions.begin(), positions.end(), '\n'), 11);
    EXPECT_NE(Read(File("trace")).find("creating helper"), std::string::npos);
}

TEST_F(Command, RecordsIntoASceneWithItsGroundAndItsPath) {
    Do("draw --path \"0,0,0 0,100,0\" --name Path -o " + File("path.scene"));
    const std::string record = "record " + Write("walk.bvh", Walk(5)) + " --scale 1 --json ";
    const std::string habits = " --ground --follow-camera --into ";
    const nlohmann::json told = nlohmann::json::parse(
        Do(record + "--scene " + File("take.scene") + habits + File("path.scene")));
    EXPECT_EQ(told["nodes"], 6);  // path, ground, camera, two joints, guide
    EXPECT_EQ(told["liftedFrames"], 0);
    EXPECT_LT(told["maxFieldOfViewErrorDegrees"].get<double>(), 1e-5);
    EXPECT_LT(told["maxTargetDistanceErrorMetres"].get<double>(), 1e-6);
    // Once more onto the nodes that are there.
    const nlohmann::json again = nlohmann::json::parse(Do(record + habits + File("take.scene")));
    EXPECT_EQ(again["nodes"], 6);
    for (const nlohmann::json& result : {told, again}) {
        EXPECT_EQ(result["undoSteps"], 1);
        EXPECT_EQ(result["undoIdentical"], true);
        EXPECT_EQ(result["redoIdentical"], true);
        EXPECT_EQ(result["hostObjectsAlive"], 0);
    }
    ExpectFailure(Run(record + "--units 100 --into " + File("take.scene")), "--", 2);
}

TEST_F(Command, NamesTheLineOfADamagedCaptureAndLeavesNoFile) {
    const std::string whole = Walk(5);
    const std::string capture = Write("cut.bvh", whole.substr(0, whole.size() - 8));
    ExpectFailure(Run("record " + capture + " --csv " + File("cut.csv")), capture + ":");
    EXPECT_FALSE(std::filesystem::exists(File("cut.csv")));
}

TEST_F(Command, SaysThatThereIsNoCoreOfUse) {
    const std::string capture = Write("walk.bvh", Walk(2));
    const std::string attached = "the Core could not be attached (";
    ExpectFailure(Run("record " + capture, folder_.Path().string()), attached);
    for (const char* puppet : {"without_version", "without_attach", "without_detach"})
        ExpectFailure(Run("record " + capture, std::string(PUPPET_CORES) + "/" + puppet), attached);
}

TEST_F(Command, RefusesFilesThatItCannotWriteAndWordsThatItDoesNotKnow) {
    const std::string capture = Write("walk.bvh", Walk(2));
    for (const char* option : {" --trace ", " --csv "}) {
        const std::string path = File("nowhere/file");
        ExpectFailure(Run("record " + capture + option + path), path + ": ");
    }
    const std::string record = "record " + capture;
    const std::string noName = ": the name of a file is empty";
    struct Wrong {
        std::string words;
        std::string what;
    };
    for (const Wrong& wrong :
         {Wrong{"", "a verb is missing"}, Wrong{"record", "CAPTURE"},
          Wrong{"play", "The following argument was not expected: play"},
          Wrong{record + " --sideways", "The following argument was not expected: --sideways"},
          Wrong{record + " --scale -1", "--scale: "}, Wrong{record + " --scale 2e6", "--scale: "},
          Wrong{record + " x.bvh --csv x", "--csv: "},
          Wrong{record + " --csv \"\"", "--csv" + noName},
          Wrong{"merge a b --save \"\"", "--save" + noName}, Wrong{"info \"\"", "SCENE" + noName}})
        ExpectFailure(Run(wrong.words), wrong.what, 2);
}

TEST_F(Command, WritesNothingOverWhatItReadsOrWritesOrMayNotWriteTo) {
    const std::string capture = Write("walk.bvh", Walk(2));
    const std::string scene = File("take.scene");
    Do("record " + capture + " --scene " + scene);
    const std::string taken = Read(scene);
    const std::string record = "record " + capture;
    const std::string again = File("./walk.bvh");
    const std::string table = File("table");
    for (const std::string option : {"--scene", "--poses", "--csv", "--trace"})
        ExpectFailure(Run(record + ' ' + option + ' ' + again), option + ": " + again, 2);
    ExpectFailure(Run(record + " --into " + scene + " --poses " + scene), "--poses: ", 2);
    ExpectFailure(Run(record + " --scene " + table + " --csv " + table), "--csv: ", 2);
    ExpectFailure(Run("sample " + scene + " --times 0:1:1 --csv " + scene), "--csv: ", 2);
    ExpectFailure(Run("render " + scene + " --time 0 -o " + scene), "-o: ", 2);

    const auto readOnly = std::filesystem::perms::owner_read;
    std::filesystem::permissions(scene, readOnly);
    std::filesystem::permissions(Write("table", "kept"), readOnly);
    ExpectFailure(Run("open " + scene + " --save " + scene),
                  scene + ": the file cannot be written: it is read-only");
    ExpectFailure(Run(record + " --poses " + table), table + ": it is read-only");
    EXPECT_EQ(Read(capture), Walk(2));
    EXPECT_EQ(Read(scene), taken);
    EXPECT_EQ(Read(table), "kept");
    for (const std::string& file : {scene, table})
        std::filesystem::permissions(file, std::filesystem::perms::owner_all);
}

}  // namespace
