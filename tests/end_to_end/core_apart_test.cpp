#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>

#include "end_to_end/command.h"
#include "end_to_end/stage.h"

// Two Cores of the same sources, the second one built apart, with other flags for optimising and
// debugging than the plug-in has. What crosses by value is made on one side and freed on the other:
// texts, lists, meshes and trees of XML, in either direction. A block that is freed on a heap not
// its own ends the process, and AddressSanitizer names it; classes laid out otherwise do not get as
// far as a scene.

namespace {

constexpr char kRealCapture[] = "/usr/share/assimp/models/BVH/01_01.bvh";
constexpr const char* kCores[] = {CORE_FOLDER, CORE_APART_FOLDER};

TEST_F(Command, CoresBuiltApartRecordTheSameAndTakeUpWhatTheOtherRecorded) {
    Do("draw --path \"0,0,0 0,100,0 0,100,50\" --name Path -o " + File("path"));
    const std::string captures =
        Write("walk.bvh", Walk(200)) + ' ' +
        (std::filesystem::exists(kRealCapture) ? kRealCapture : Write("run.bvh", Walk(300)));
    const std::string scenes[] = {File("first"), File("second")};
    for (const int core : {0, 1})
        Do("record " + captures + " --ground --follow-camera --into " + File("path") + " --scene " +
               scenes[core] + " --poses " + scenes[core] + ".csv",
           kCores[core]);
    Do("diff " + scenes[0] + ' ' + scenes[1]);
    EXPECT_TRUE(Read(scenes[0]) == Read(scenes[1])) << "bytes differ";
    const std::string poses = Read(scenes[0] + ".csv");
    EXPECT_GT(poses.size(), 100'000u);
    EXPECT_TRUE(poses == Read(scenes[1] + ".csv")) << "poses differ";

    for (const int core : {0, 1}) {
        const std::string again = File("again");
        const auto told = nlohmann::json::parse(
            Do("open " + scenes[core] + " --json --save " + again, kCores[1 - core]));
        EXPECT_EQ(told["takes"].size(), 2u);
        for (const nlohmann::json& take : told["takes"])
            EXPECT_TRUE(take["missing"].empty()) << take;
        EXPECT_TRUE(told["complaints"].empty()) << told;
        Do("diff " + scenes[core] + ' ' + again);
    }
}

}  // namespace
