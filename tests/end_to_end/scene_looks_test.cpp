#include <filesystem>
#include <nlohmann/json.hpp>

#include "tests/end_to_end/command.h"
#include "tests/end_to_end/stage.h"

// Looking at scene files and telling them apart, from the command line.

namespace {

TEST_F(Command, TellsWhatASceneHoldsAndInWhatItDiffers) {
    const std::string capture = Write("walk.bvh", Walk(5));
    const std::string first = File("first");
    const std::string second = File("second");
    Do("record " + capture + " --scene " + first);
    const auto whole = nlohmann::json::parse(Do("info " + first + " --json"));
    EXPECT_EQ(whole["nodes"][1]["name"], "walk_Hip");
    EXPECT_EQ(whole["nodes"][1]["keys"], 5);
    EXPECT_GT(whole["nodes"][1]["tagBytes"], 0);
    EXPECT_EQ(whole["utilities"][0]["chunks"][0]["id"], 1032);
    EXPECT_TRUE(whole["host"]["keptClasses"].empty());
    EXPECT_EQ(whole["host"]["utilityChunks"][0]["taken"], true);
    const auto coreless = nlohmann::json::parse(Do("info " + first + " --json --no-core"));
    EXPECT_EQ(coreless["host"]["utilityChunks"][0]["taken"], false);
    EXPECT_NE(Do("info " + first + " --no-plugin").find("chunk 1032"), std::string::npos);

    EXPECT_EQ(Do("diff " + first + " " + first + " --cached-keys"), "");
    Do("record " + Write("walk.bvh", Walk(6)) + " --scene " + second);
    const Ending ending = Run("diff " + first + " " + second);
    EXPECT_EQ(ending.status, 1);
    EXPECT_EQ(ending.error, "");
    EXPECT_NE(ending.out.find("node \"walk_Hip\" ("), std::string::npos) << ending.out;
    EXPECT_NE(ending.out.find("5 and 6 keys, which differ from tick "), std::string::npos)
        << ending.out;

    std::filesystem::resize_file(second, 100);
    EXPECT_EQ(Run("diff " + first + " " + second).status, 2);
    ExpectFailure(Run("info " + second), second + ": at byte ");
}

}  // namespace
