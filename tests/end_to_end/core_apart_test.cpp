#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>

#include "tests/end_to_end/command.h"
#include "tests/end_to_end/stage.h"

// Two Cores of the same sources, the second one built apart, with other flags for optimising and
// debugging than the plug-in has. What crosses by value is made on one side and freed on the other:
// texts, lists, meshes and trees of XML, in either direction. On Linux a block that is freed on a
// heap not its own ends the process, and AddressSanitizer names it; tests/windows looks after the
// heap there. Classes laid out otherwise do not get as far as a scene.

namespace {

constexpr char kItsFrames[] = "0:22.9249083:0.0083333";
constexpr const char* kCores[] = {CORE_FOLDER, CORE_APART_FOLDER};

// Beyond the last digit that a compiler's choice of a square root can change.
constexpr double kLastDigit = 1e-15;

TEST_F(Command, CoresBuiltApartRecordTheSameAndTakeUpWhatTheOtherRecorded) {
    if (!std::filesystem::exists(kRealCapture)) GTEST_SKIP() << "assimp-testmodels is missing";
    const std::string captures = Write("walk.bvh", Walk(200)) + ' ' + kRealCapture;
    Do("draw --path \"0,0,0 0,100,0 0,100,50\" --name Path -o " + File("path"));
    const std::string scenes[] = {File("first"), File("second")};
    std::string poses[2];
    for (const int core : {0, 1}) {
        Do("record " + captures + " --ground --follow-camera --into " + File("path") + " --scene " +
               scenes[core] + " --poses " + File("poses"),
           kCores[core]);
        poses[core] = Read(File("poses"));
    }
    EXPECT_TRUE(Read(scenes[0]) == Read(scenes[1]))
        << Run("diff " + scenes[0] + ' ' + scenes[1]).out;
    EXPECT_LE(FurthestApart(poses[0], poses[1]), kLastDigit);

    for (const int core : {0, 1}) {
        const std::string& others = scenes[1 - core];
        const auto told = nlohmann::json::parse(
            Do("open " + others + " --json --save " + File("again"), kCores[core]));
        EXPECT_EQ(told["takes"].size(), 2u);
        for (const nlohmann::json& take : told["takes"])
            EXPECT_TRUE(take["missing"].empty()) << take;
        EXPECT_TRUE(told["complaints"].empty()) << told;
        Do("diff " + others + ' ' + File("again"));
        Do("sample " + File("again") + " --times " + kItsFrames + " --csv " + File("poses"),
           kCores[core]);
        EXPECT_TRUE(Read(File("poses")) == poses[core]) << "poses differ";
    }
}

}  // namespace
