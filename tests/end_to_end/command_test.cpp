#include "tests/end_to_end/command.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "platform/testing.h"
#include "tests/end_to_end/stage.h"
#include "tvl/adaptor_interface.h"

// The command as a person calls it: what it prints, and how it ends.

namespace {

using Json = nlohmann::json;

TEST_F(Command, TellsAProgramWhatWasRecordedAndWritesThePositions) {
    const std::string capture = Write("walk.bvh", Walk(5));
    const Json told = Json::parse(Do("record " + capture + " --scale 1 --json --csv " +
                                     File("walk.csv") + " --trace " + File("trace")));
    EXPECT_EQ(told["capture"], capture);
    EXPECT_EQ(told["joints"], 2);
    EXPECT_EQ(told["frames"], 5);
    EXPECT_EQ(told["keys"], 10);
    EXPECT_EQ(told["hostObjectsAlive"], 0);
    EXPECT_LT(told["maxPositionErrorMetres"].get<double>(), 1e-4);
    const std::string positions = Read(File("walk.csv"));
    EXPECT_EQ(positions.rfind("frame,seconds,joint,x,y,z\n0,0,Hip,", 0), 0U);
    EXPECT_EQ(std::count(positions.begin(), positions.end(), '\n'), 11);
    EXPECT_NE(Read(File("trace")).find("creating helper"), std::string::npos);
    EXPECT_EQ(Do("--version"), "1.0.0\n");
}

TEST_F(Command, RecordsIntoASceneWithItsGroundAndItsPath) {
    Do("draw --path \"0,0,0 0,100,0\" --name Path -o " + File("path.scene"));
    const std::string record = "record " + Write("walk.bvh", Walk(5)) + " --scale 1 --json ";
    const std::string habits = " --ground --follow-camera --scene " + File("take.scene");
    // Once more onto the nodes that are there.
    for (const char* into : {"path.scene", "take.scene"}) {
        const Json told = Json::parse(Do(record + habits + " --into " + File(into)));
        EXPECT_EQ(told["nodes"], 6);  // path, ground, camera, two joints, guide
        EXPECT_EQ(told["liftedFrames"], 0);
        EXPECT_LT(told["maxFieldOfViewErrorDegrees"].get<double>(), 1e-5);
        EXPECT_LT(told["maxTargetDistanceErrorMetres"].get<double>(), 1e-6);
        EXPECT_TRUE(told["undoSteps"] == 1 && told["undoIdentical"] && told["redoIdentical"]);
        EXPECT_EQ(told["hostObjectsAlive"], 0);
    }
    ExpectFailure(Run(record + "--units 100 --into " + File("take.scene")), "--", 2);
}

TEST_F(Command, SaysThatThereIsNoCoreOfUse) {
    const std::string record = "record " + Write("walk.bvh", Walk(2));
    const std::string attached = "the Core could not be attached (";
    ExpectFailure(Run(record, folder_.Path().string()), attached);
    for (const char* puppet : {"without_version", "without_attach", "without_detach"})
        ExpectFailure(Run(record, std::string(PUPPET_CORES "/") + puppet), attached);
    ExpectFailure(Run(record + " --trace " + File("trace"), PUPPET_CORES "/other_version"),
                  attached + "it is of another version");
    const std::string trace = Read(File("trace"));
    for (const std::string& line : {std::string("version mismatch trying to attach to CORE"),
                                    "CORE version: " + std::to_string(TVL::kInterfaceVersion + 1),
                                    "Adaptor version: " + std::to_string(TVL::kInterfaceVersion)})
        EXPECT_NE(trace.find("(ERROR): \t" + line + '\n'), std::string::npos) << trace;
}

TEST_F(Command, RefusesWordsThatItDoesNotKnowAndDamagedCaptures) {
    const std::string capture = Write("walk.bvh", Walk(2));
    const std::string whole = Walk(5);
    const std::string cut = Write("cut.bvh", whole.substr(0, whole.size() - 8));
    ExpectFailure(Run("record " + cut + " --csv " + File("cut.csv")), cut + ":");
    EXPECT_FALSE(std::filesystem::exists(File("cut.csv")));
    for (const char* option : {" --trace ", " --csv ", " --poses "}) {
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
    namespace fs = std::filesystem;
    const std::string capture = Write("walk.bvh", Walk(2));
    const std::string scene = File("take.scene");
    const std::string record = "record " + capture;
    const std::string again = File("./walk.bvh");
    const std::string table = File("table");
    Do(record + " --scene " + scene);
    const std::string taken = Read(scene);
    for (const std::string option : {"--scene", "--poses", "--csv", "--trace"})
        ExpectFailure(Run(record + ' ' + option + ' ' + again), option + ": " + again, 2);
    ExpectFailure(Run(record + " --into " + scene + " --poses " + scene), "--poses: ", 2);
    ExpectFailure(Run(record + " --scene " + table + " --csv " + table), "--csv: ", 2);
    ExpectFailure(Run("sample " + scene + " --times 0:1:1 --csv " + scene), "--csv: ", 2);
    ExpectFailure(Run("render " + scene + " --time 0 -o " + scene), "-o: ", 2);

    fs::permissions(scene, fs::perms::owner_read);
    fs::permissions(Write("table", "kept"), fs::perms::owner_read);
    fs::create_directory(File("folder"));
    ExpectFailure(Run("open " + scene + " --save " + scene),
                  scene + ": the file cannot be written: it is read-only");
    ExpectFailure(Run(record + " --poses " + table), table + ": it is read-only");
    ExpectFailure(Run(record + " --csv " + File("folder")),
                  File("folder") + ": it is no plain file");
    EXPECT_EQ(Read(capture), Walk(2));
    EXPECT_EQ(Read(scene), taken);
    EXPECT_EQ(Read(table), "kept");
    for (const std::string& file : {scene, table})
        fs::permissions(file, fs::perms::owner_all);
}

TEST_F(Command, TellsWhatASceneHoldsAndInWhatItDiffers) {
    const std::string first = File("first");
    const std::string second = File("second");
    Do("record " + Write("walk.bvh", Walk(5)) + " --scene " + first);
    const Json whole = Json::parse(Do("info " + first + " --json"));
    EXPECT_EQ(whole["nodes"][1]["name"], "walk_Hip");
    EXPECT_EQ(whole["nodes"][1]["keys"], 5);
    EXPECT_GT(whole["nodes"][1]["tagBytes"], 0);
    EXPECT_EQ(whole["utilities"][0]["chunks"][0]["id"], 1032);
    EXPECT_TRUE(whole["host"]["keptClasses"].empty());
    EXPECT_EQ(whole["host"]["utilityChunks"][0]["taken"], true);
    const Json coreless = Json::parse(Do("info " + first + " --json --no-core"));
    EXPECT_EQ(coreless["host"]["utilityChunks"][0]["taken"], false);
    EXPECT_NE(Do("info " + first + " --no-plugin").find("chunk 1032"), std::string::npos);

    EXPECT_EQ(Do("diff " + first + " " + first + " --cached-keys"), "");
    Do("record " + Write("walk.bvh", Walk(6)) + " --scene " + second);
    const std::string compare = "diff " + first + " " + second;
    const Ending ending = Run(compare);
    EXPECT_EQ(ending.status, 1);
    EXPECT_EQ(ending.error, "");
    EXPECT_NE(ending.out.find("node \"walk_Hip\" ("), std::string::npos) << ending.out;
    EXPECT_NE(ending.out.find("5 and 6 keys, which differ from tick "), std::string::npos);
    if (std::filesystem::exists("/dev/full")) {
        EXPECT_EQ(platform::RunProgram({.program = COMMAND,
                                        .arguments = platform::FromNarrow(compare).native(),
                                        .out = "/dev/full",
                                        .error = "/dev/null"}),
                  2);
    }
    std::filesystem::resize_file(second, 100);
    EXPECT_EQ(Run(compare).status, 2);
    ExpectFailure(Run("info " + second), second + ": at byte ");
}

}  // namespace
